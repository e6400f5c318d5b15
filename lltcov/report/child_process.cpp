// Output goes to files: many programs can then run side by side, and none waits for its reader.
#include "lltcov/report/child_process.h"

#include "commonfunc/env.h"
#include "commonfunc/file_io.h"
#include "commonfunc/file_tree.h"
#include "commonfunc/path_name.h"
#include "commonfunc/shell.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <fcntl.h>
#include <set>
#include <spawn.h>
#include <stdexcept>
#include <sys/time.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace
{

constexpr int ENDING_SIGNALS[] = {SIGINT, SIGTERM, SIGHUP};

volatile std::sig_atomic_t ending_signal = 0;
int number_of_directories = 0;
std::set<pid_t> running_programs;

void do_nothing(int /*signal*/) {}

/// From now on nothing waits for long: the signal may have come just before a wait.
void note_signal(int signal)
{
    constexpr itimerval OFTEN = {{0, 50000}, {0, 50000}};
    ending_signal = signal;
    struct sigaction interrupting = {};
    interrupting.sa_handler = do_nothing;
    ::sigaction(SIGALRM, &interrupting, nullptr);
    ::setitimer(ITIMER_REAL, &OFTEN, nullptr);
}

/// Without restarting what is interrupted; a signal that is ignored stays so.
void handle_signals(void (*handler)(int))
{
    for (const int signal : ENDING_SIGNALS) {
        struct sigaction action = {};
        if (::sigaction(signal, nullptr, &action) == 0 && action.sa_handler != SIG_IGN) {
            action = {};
            action.sa_handler = handler;
            ::sigaction(signal, &action, nullptr);
        }
    }
}

/// What still runs would write into the directory.
void throw_if_ending()
{
    if (ending_signal == 0) {
        return;
    }
    for (const pid_t program : running_programs) {
        ::kill(program, SIGKILL);
        while (::waitpid(program, nullptr, 0) < 0 && errno == EINTR) {
        }
    }
    running_programs.clear();
    throw std::runtime_error("interrupted by a signal");
}

} // namespace

TemporaryDirectory::TemporaryDirectory()
    : path_((env_is_filled("TMPDIR") ? absolute_path(env_text("TMPDIR")) : "/tmp") +
            "/lltcov-XXXXXX")
{
    if (::mkdtemp(&path_[0]) == nullptr) {
        throw std::runtime_error("no temporary directory '" + path_ + "': " + std::strerror(errno));
    }
    ++number_of_directories;
    handle_signals(note_signal);
}

// Also on the way out of an exception: what cannot be removed for want of memory stays.
TemporaryDirectory::~TemporaryDirectory()
{
    try {
        remove_tree(path_);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "lltcov: the temporary directory '%s' stays: %s\n", path_.c_str(),
                     error.what());
    }
    if (--number_of_directories == 0) {
        handle_signals(SIG_DFL);
        if (ending_signal != 0) {
            std::raise(ending_signal);
        }
    }
}

// Over what the file holds: some file systems hurry to the disk when a file was emptied first.
void TemporaryDirectory::write(const std::string& name, const std::string& bytes) const
{
    const std::string path = path_ + "/" + name;
    const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    const bool is_written = fd >= 0 && write_all(fd, bytes.data(), bytes.size()) &&
                            ::ftruncate(fd, static_cast<off_t>(bytes.size())) == 0;
    const int error = errno;
    if ((fd >= 0 && ::close(fd) != 0) || !is_written) {
        throw std::runtime_error("cannot write '" + path +
                                 "': " + std::strerror(is_written ? errno : error));
    }
}

std::string TemporaryDirectory::read(const std::string& name) const
{
    std::string bytes;
    read_whole_file(path_ + "/" + name, bytes);
    return bytes;
}

pid_t start_program(const std::vector<std::string>& words, const TemporaryDirectory& directory,
                    const std::string& name)
{
    throw_if_ending();
    constexpr int WRITING = O_WRONLY | O_CREAT | O_TRUNC;
    const std::string output = directory.path() + "/" + name + ".out";
    const std::string errors = directory.path() + "/" + name + ".err";
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (const std::string& word : words) {
        arguments.push_back(const_cast<char*>(word.c_str()));
    }
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, output.c_str(), WRITING, 0600);
    ::posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, errors.c_str(), WRITING, 0600);
    ::posix_spawn_file_actions_addchdir_np(&actions, directory.path().c_str());
    const ChangedEnvironment english({"LC_ALL=C"});
    pid_t child = 0;
    const int error = ::posix_spawnp(&child, arguments[0], &actions, nullptr, arguments.data(),
                                     english.variables());
    ::posix_spawn_file_actions_destroy(&actions);
    if (error != 0) {
        return 0;
    }
    running_programs.insert(child);
    return child;
}

int wait_for_program(pid_t program)
{
    int status = -1;
    while (program != 0 && ::waitpid(program, &status, 0) < 0 && errno == EINTR) {
        throw_if_ending();
    }
    running_programs.erase(program);
    throw_if_ending();
    return exit_status_of(status);
}

std::size_t number_of_processors()
{
    return std::max(1U, std::thread::hardware_concurrency());
}
