// One string goes in, one wait status comes out. The shell is given the string as it is; only a
// string that the kernel would refuse as one argument is passed in a file, in memory where
// /proc is mounted. The promises are those of `system`, which itself would look at each of 64
// signals for each command, and answers 127 also where no process can be had.
#include "commonfunc/shell.h"

#include "commonfunc/descriptor.h"
#include "commonfunc/env.h"
#include "commonfunc/message.h"
#include "commonfunc/text.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

/// Waits with SIGCHLD held back, and without SIGINT and SIGQUIT, which are for the command alone:
/// to ignore a signal also drops what came of it while it was blocked.
int wait_for_shell(pid_t shell, sigset_t mask, void (*meanwhile)())
{
    struct sigaction ignored = {}, interrupt = {}, quit = {};
    ignored.sa_handler = SIG_IGN;
    ::sigaction(SIGINT, &ignored, &interrupt);
    ::sigaction(SIGQUIT, &ignored, &quit);
    ::sigaddset(&mask, SIGCHLD);
    ::sigprocmask(SIG_SETMASK, &mask, nullptr);
    if (meanwhile != nullptr) {
        meanwhile();
    }
    int status = 0;
    const pid_t ended = uninterrupted([&] { return ::waitpid(shell, &status, 0); });
    ::sigaction(SIGINT, &interrupt, nullptr);
    ::sigaction(SIGQUIT, &quit, nullptr);
    return ended == shell ? status : -1;
}

/// The status of `/bin/sh -c COMMAND`, -1 where no process can be had. Until it is the shell, the
/// child shares the memory of the program, which stands still: it makes two system calls and
/// nothing else. All signals are blocked until the first of them, and what the program ignores
/// while it waits is ignored after the second, so the shell gets signals as they were. A handler
/// could run in between, with the shared memory: those of the program are empty.
int run_process(const char* command, void (*meanwhile)())
{
    const char* const words[] = {"sh", "-c", command, nullptr};
    sigset_t all, mask;
    ::sigfillset(&all);
    ::sigprocmask(SIG_BLOCK, &all, &mask);
    // Nothing else starts a process with so few system calls.
    const pid_t shell = ::vfork(); // NOLINT(clang-analyzer-security.insecureAPI.vfork)
    if (shell == 0) {
        ::sigprocmask(SIG_SETMASK, &mask, nullptr); // NOLINT(clang-analyzer-unix.Vfork)
        ::execve("/bin/sh", const_cast<char* const*>(words), environ);
        ::_exit(127);
    }
    const int error = errno;
    const int status = shell < 0 ? -1 : wait_for_shell(shell, mask, meanwhile);
    ::sigprocmask(SIG_SETMASK, &mask, nullptr);
    if (shell < 0) {
        warn("no process can be started for: %s: %s; raise the limits on processes and memory",
             beginning_of(command).c_str(), std::strerror(error));
    }
    return status;
}

/// Linux passes at most 32 pages per argument, the NUL included (MAX_ARG_STRLEN, execve(2)).
constexpr std::size_t MAX_ARGUMENT_LENGTH = 131071;

/// A file of the command, for a shell to read.
struct CommandFile {
    int fd = -1;
    std::string path; ///< for the shell; empty when there is no file
    bool is_on_disk = false;

    CommandFile() = default;
    CommandFile(const CommandFile&) = delete;
    CommandFile& operator=(const CommandFile&) = delete;
    ~CommandFile()
    {
        if (is_on_disk) {
            ::unlink(path.c_str());
        }
        if (fd >= 0) {
            ::close(fd);
        }
    }
};

/// Takes the descriptor for the file when the whole command can be written to it.
bool take_if_written(CommandFile& file, int fd, const std::string& path, const std::string& command)
{
    if (fd < 0) {
        return false;
    }
    const bool written =
        write_all(fd, command.data(), command.size()) && ::access(path.c_str(), R_OK) == 0;
    if (written) {
        file.fd = fd;
        file.path = path;
    } else {
        ::close(fd);
    }
    return written;
}

/// A file in memory ends with the process, whatever ends it.
void write_in_memory(CommandFile& file, const std::string& command)
{
    const int fd = ::memfd_create("lltwrapper-command", MFD_CLOEXEC);
    take_if_written(file, fd, "/proc/" + std::to_string(::getpid()) + "/fd/" + std::to_string(fd),
                    command);
}

void write_in_directory(CommandFile& file, const std::string& directory, const std::string& command)
{
    std::string path = directory + "/lltwrapper-XXXXXX";
    const int fd = ::mkostemp(&path[0], O_CLOEXEC);
    file.is_on_disk = take_if_written(file, fd, path, command);
    if (fd >= 0 && !file.is_on_disk) {
        ::unlink(path.c_str());
    }
}

int run_from_file(const std::string& command, void (*meanwhile)())
{
    CommandFile file;
    write_in_memory(file, command);
    if (file.path.empty() && env_is_filled("TMPDIR")) {
        write_in_directory(file, env_text("TMPDIR"), command);
    }
    if (file.path.empty()) {
        write_in_directory(file, "/tmp", command);
    }
    if (file.path.empty()) {
        warn(
            "cannot write the command of %zu bytes to a file in /tmp: %s; make room there or set TMPDIR",
            command.size(), std::strerror(errno));
        return -1;
    }
    return run_process(("exec /bin/sh " + shell_word(file.path)).c_str(), meanwhile);
}

bool is_plain(char c)
{
    const auto byte = static_cast<unsigned char>(c);
    return (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') ||
           (byte >= '0' && byte <= '9') || byte >= 128 ||
           (byte != 0 && std::strchr("_-./+,:=@%", byte) != nullptr);
}

} // namespace

int run_shell(const std::string& command, Flush flush, void (*meanwhile)())
{
    if (flush == Flush::both) {
        flush_output();
    } else if (flush == Flush::out) {
        std::fflush(stdout);
    }
    return command.size() <= MAX_ARGUMENT_LENGTH ? run_process(command.c_str(), meanwhile)
                                                 : run_from_file(command, meanwhile);
}

int run_helper(const std::string& command, void (*meanwhile)())
{
    const int status = run_shell(command, Flush::both, meanwhile);
    if (status != -1 && exit_status_of(status) == 127) {
        warn("could not be run: %s; check PATH and the limits on processes and memory",
             beginning_of(command).c_str());
    }
    const int code = status == -1 ? 0 : exit_status_of(status);
    for (const int signal : {SIGINT, SIGQUIT}) {
        if (code == 128 + signal) {
            std::signal(signal, SIG_DFL);
            std::raise(signal);
        }
    }
    return status;
}

std::string shell_word(const std::string& name)
{
    const std::string path = (!name.empty() && name[0] == '-' ? "./" : "") + name;
    bool plain = !path.empty();
    std::string quoted = "'";
    for (const char c : path) {
        plain = plain && is_plain(c);
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return plain ? path : quoted + "'";
}

int exit_status_of(int wait_status)
{
    if (wait_status == -1) {
        return 127;
    }
    return WIFSIGNALED(wait_status) ? 128 + WTERMSIG(wait_status) : WEXITSTATUS(wait_status);
}
