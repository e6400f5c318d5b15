// What a user would otherwise do by hand: source the project's settings, write shims, put them
// first on PATH, switch the wrapper on, and drop the counts of earlier builds after the build. The
// shims stay in the project: a configure step keeps the paths of the compilers that it has found.
#include "commonfunc/env.h"
#include "commonfunc/file_ops.h"
#include "commonfunc/message.h"
#include "commonfunc/own_files.h"
#include "commonfunc/shell.h"
#include "contract/names.h"
#include "contract/project_root.h"
#include "lltcov/common/command_line.h"
#include "lltcov/common/commands.h"
#include "lltcov/common/project.h"
#include "lltcov/report/clean.h"
#include "lltcov/shims/shims.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <map>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <vector>

namespace
{

/// What a path of PATH, or a word of the wrapper's commands, cannot hold.
constexpr char UNFIT[] = ": \t\n\"'`$\\;&|<>()*?[]{}~#!^";

/// Settings file, shims, then the command.
constexpr char SCRIPT[] = R"SH(_lltcov_settings=$1 _lltcov_shims=$2
shift 2
. "$_lltcov_settings"
export PATH="$_lltcov_shims:$PATH" LLT_WRAP=1
unset LLT_PROJECT _lltcov_settings _lltcov_shims
command -v "$1" >/dev/null || {
    echo "lltcov: there is no program '$1'; for shell functions, '|' and '&&': lltcov run -- sh -c 'COMMANDS'" >&2
    exit 127
}
exec "$@"
)SH";

volatile std::sig_atomic_t command_process = 0;

void pass_on(int signal)
{
    ::kill(static_cast<pid_t>(command_process), signal);
}

/// Where the data of the call's project go: the project is that of "--project", else that of the
/// environment, else that of the current directory.
struct Place {
    std::string directory; ///< of the project; empty for the environment's
    std::string data;      ///< what the tool set writes is below it
};

Place place_of(const CommandLine& line)
{
    const bool is_set = !line.has("--project") && env_is_filled("qmr_current_prj_path");
    if (is_set) { // the settings make it too, and lltcov clean --all removes it
        std::filesystem::create_directories(root_of_project(env_text("qmr_current_prj_path")));
    }
    const std::string root = project_root(line);
    const std::string directory = is_set ? "" : project_directory(root);
    return {directory, is_set ? root : directory + "/" OWN_DIRECTORY};
}

/// Ctrl-C reaches the command as well, which decides what it means; a signal from elsewhere is
/// passed on.
void hand_signals_over()
{
    for (const int signal : {SIGINT, SIGQUIT}) {
        std::signal(signal, SIG_IGN);
    }
    for (const int signal : {SIGTERM, SIGHUP}) {
        if (std::signal(signal, pass_on) == SIG_IGN) {
            std::signal(signal, SIG_IGN);
        }
    }
}

/// The wait status of the command.
int run_words(const std::vector<std::string>& words, const std::vector<std::string>& changes)
{
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (const std::string& word : words) {
        arguments.push_back(const_cast<char*>(word.c_str()));
    }
    arguments.push_back(nullptr);
    const ChangedEnvironment environment(changes);
    pid_t child = 0;
    const int error = ::posix_spawn(&child, "/bin/sh", nullptr, nullptr, arguments.data(),
                                    environment.variables());
    if (error != 0) {
        warn("cannot start /bin/sh: %s", std::strerror(error));
        return -1;
    }
    command_process = child;
    hand_signals_over();
    int status = -1;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    for (const int signal : {SIGINT, SIGQUIT, SIGTERM, SIGHUP}) {
        std::signal(signal, SIG_DFL);
    }
    return status;
}

} // namespace

int run_run(const Arguments& arguments)
{
    const CommandLine line(arguments, {}, {"--project"});
    if (line.operands().empty()) {
        throw UsageError("run needs a command after --");
    }
    const std::string settings = own_file("TUSK_INIT.SH");
    if (settings.empty()) {
        warn("the installation that '%s' belongs to has no TUSK_INIT.SH; install it again",
             program_directory().c_str());
        return 1;
    }
    const Place place = place_of(line);
    const std::string shims = kept_place(place.data, RUN_SHIMS);
    if (shims.find_first_of(UNFIT) != std::string::npos) {
        warn(
            "'%s': the wrapper cannot pass a path on that holds blanks, ':' or characters of the shell; nothing is run: build in another directory, or name one with --project",
            place.data.c_str());
        return 1;
    }
    if (write_shims(shims).empty()) {
        return 1;
    }
    std::vector<std::string> words = {"sh", "-c", SCRIPT, "sh", settings, shims};
    words.insert(words.end(), line.operands().begin(), line.operands().end());
    const int status = run_words(
        words, {place.directory.empty() ? "LLT_PROJECT" : "LLT_PROJECT=" + place.directory});
    remove_old_counts(place.data);
    if (status != -1 && WIFSIGNALED(status)) {
        std::signal(WTERMSIG(status), SIG_DFL);
        std::raise(WTERMSIG(status));
    }
    return exit_status_of(status);
}
