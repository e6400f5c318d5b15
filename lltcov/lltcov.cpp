// lltcov answers what a build engineer asks about a build with coverage: what will the wrapper do
// with this command, is everything set up, what was reached. One subcommand per question.
#include "commonfunc/message.h"
#include "lltcov/common/command_line.h"
#include "lltcov/common/commands.h"
#include "lltcov/common/console.h"

#include <csignal>
#include <cstdio>
#include <cstring>
#include <exception>
#include <filesystem>
#include <string>
#include <system_error>

namespace
{

struct Command {
    const char* name;
    const char* operands; ///< for the usage line
    const char* purpose;
    int (*run)(const Arguments& arguments);
};

constexpr Command COMMANDS[] = {
    {"run", "[--project DIR] -- COMMAND...",
     "run a build or its configure step; its tools go through lltwrapper", run_run},
    {"report", "[-o DIR] [--allow-empty] [SELECTION]", "the coverage of all runs as HTML pages",
     run_report},
    {"status", "[--json | --files | --directories] [SELECTION]",
     "hit rates of modules, sources or directories", run_status},
    {"export", "--lcov|--json|--cobertura|--gcda DIR [-o FILE] [--allow-empty] [SELECTION]",
     "the coverage of all runs, for other tools", run_export},
    {"diff", "REVISION|FILE|- [--allow-empty] [SELECTION]",
     "which lines of a change, since a git revision or of a diff (- from standard input), have run",
     run_diff},
    {"merge", "[--map THERE=HERE]... [--prefix NAME] [--project DIR] DIRECTORY...",
     "take the counts of runs on other machines", run_merge},
    {"tests", "[FILE:LINE | --unique] [--map THERE=HERE]... [--project DIR]",
     "which tests reach a line, or alone reach some line", run_tests},
    {"explain", "[--project DIR] -- COMMAND...",
     "what lltwrapper would do with a command; runs nothing", run_explain},
    {"doctor", "[--project DIR]",
     "what is missing or odd in settings, tools and work areas, with cures", run_doctor},
    {"clean", "[--old | --gone | --all] [--dry-run] [--map THERE=HERE]... [--project DIR]",
     "remove the counts of all runs, or what is left of a build", run_clean},
    {"shims", "DIR", "write compilers and archivers that go through lltwrapper on demand",
     run_shims},
};

bool is_help(const char* word)
{
    return std::strcmp(word, "--help") == 0 || std::strcmp(word, "-h") == 0;
}

void print_help(std::FILE* out)
{
    std::fputs("usage: lltcov COMMAND [argument ...]\n\n", out);
    for (const Command& command : COMMANDS) {
        std::fprintf(out, "  %s %s\n      %s\n", command.name, command.operands, command.purpose);
    }
    std::fputs(
        "\n"
        "SELECTION: [--include PATTERN]... [--exclude PATTERN]... [--no-markers] [--exclude-throw-branches]\n"
        "    [--fail-under-line PERCENT] [--fail-under-branch PERCENT] [--project DIR]\n"
        "    [--map THERE=HERE]...\n"
        "The project is the one of --project, else of qmr_current_prj_path, else the current\n"
        "directory or the nearest above it that has .lltcov. Exit status: 0, 1 when something\n"
        "was found or failed, 2 for a wrong call. See lltcov(1).\n",
        out);
}

void print_usage(std::FILE* out, const Command& command)
{
    std::fprintf(out, "usage: lltcov %s %s\n", command.name, command.operands);
}

int run_command(const Command& command, const Arguments& arguments)
{
    if (!arguments.empty() && is_help(arguments[0].c_str())) {
        print_usage(stdout, command);
        std::printf("%s; see lltcov(1)\n", command.purpose);
        return 0;
    }
    try {
        return command.run(arguments);
    } catch (const UsageError& error) {
        std::fprintf(stderr, "lltcov: %s\n", error.what());
        print_usage(stderr, command);
        return 2;
    }
}

int run_command_named(const char* name, const Arguments& arguments)
{
    for (const Command& command : COMMANDS) {
        if (std::strcmp(name, command.name) == 0) {
            return run_command(command, arguments);
        }
    }
    warn("there is no command '%s'; 'lltcov help' lists them", name);
    return 2;
}

int run_call(int argc, char** argv)
{
    if (argc < 2) {
        print_help(stderr);
        return 2;
    }
    const bool is_about_one = argc == 3 && std::strcmp(argv[1], "help") == 0;
    if (is_help(argv[1]) || (argc == 2 && std::strcmp(argv[1], "help") == 0)) {
        print_help(stdout);
        return 0;
    }
    if (std::strcmp(argv[1], "--version") == 0) {
        std::puts("lltcov " LLTCOV_VERSION);
        return 0;
    }
    try {
        return is_about_one ? run_command_named(argv[2], {"--help"})
                            : run_command_named(argv[1], Arguments(argv + 2, argv + argc));
    } catch (const std::filesystem::filesystem_error& error) {
        warn("stopped at '%s': %s; check what stands there, and that you may write there",
             error.path1().c_str(), error.code().message().c_str());
    } catch (const std::exception& error) {
        warn("stopped: %s", error.what());
    }
    return 1;
}

} // namespace

int main(int argc, char** argv)
{
    set_warning_name("lltcov");
    std::signal(SIGCHLD, SIG_DFL); // ignored by the parent, it would hide how programs end
    std::set_terminate(stop_without_memory);
    const int status = run_call(argc, argv);
    return finish_output() || status != 0 ? status : 1;
}
