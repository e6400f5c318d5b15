// Five modes in a fixed order of precedence. Compile and link normalise the status to 0 or 1; the
// others hand on the wait status as it is, of which the parent sees the low eight bits: a tool
// that exits with 2 leaves status 0. Build systems have been set up around both, so both stay, and
// standard error says what the status hides. LLTWRAPPER_EXACT_STATUS=1 gives the real one.
#include "lltwrapper/mode_dispatch.h"

#include "commonfunc/env.h"
#include "commonfunc/message.h"
#include "commonfunc/path_name.h"
#include "commonfunc/shell.h"
#include "commonfunc/text.h"
#include "lltld/cov_paths.h"
#include "lltld/program_objects.h"
#include "lltwrapper/archive_prepare.h"
#include "lltwrapper/archive_sequence.h"
#include "lltwrapper/driver_path.h"
#include "lltwrapper/forward_cmd.h"
#include "lltwrapper/version.h"
#include "lltwrapper/wrapper_state.h"

#include <cstdlib>
#include <string>
#include <utility>

namespace
{

constexpr char HELP[] =
    R"(Usage: lltwrapper [option value ...] tool [argument ...]
Runs one compiler, linker or archiver command of a build, instrumented for coverage.

  -artool NAME, -arsuffix SUFFIX      archiver and archive suffix, e.g. ar and .a
  -objsuffix LIST, -binsuffix SUFFIX  suffixes of objects (a|b) and programs
  -qmr_current_prj_path PATH -projectname NAME, -qmr_coverage_stub_mold MODE,
  -lltwrapper_envfile FILE            taken out of the command; the environment decides
  -v, --version                       print the version
  --help                              print this help

Example: make CC="lltwrapper gcc"
The environment comes from the project's TUSK_INIT.SH; see lltwrapper(1).
)";

/// Runs the command and makes the exit status of the process from its wait status.
int run_command(const std::string& command, Flush flush, Status kind)
{
    restore_output();
    const int wait_status = run_shell(command, flush);
    const int real = exit_status_of(wait_status);
    if (kind == Status::zero_or_one) {
        warn_of_missing_driver(command, real);
    }
    if (env_text("LLTWRAPPER_EXACT_STATUS") == "1") {
        return real;
    }
    const int status = kind == Status::raw ? wait_status : (wait_status != 0 ? 1 : 0);
    if (real != 0 && (status & 0xFF) == 0) {
        warn(
            "exit status 0 although the command failed with %d: %s (LLTWRAPPER_EXACT_STATUS=1 passes the status on)",
            real, beginning_of(command).c_str());
    }
    return status;
}

void warn_if_unset(const char* name)
{
    if (std::getenv(name) == nullptr) {
        warn(
            "environment variable '%s' is not set: the driver gets an empty value; source the project's TUSK_INIT.SH",
            name);
    }
}

/// What a mode needs done before its command is built; false when the command must not run.
bool prepare(Mode mode)
{
    if (mode == Mode::compile || mode == Mode::link) {
        warn_if_unset("qmr_current_prj_path");
        warn_if_unset("qmr_coverage_stub_mold");
        put_drivers_on_path();
    }
    if (mode == Mode::archive && !bring_archive_up_to_date()) {
        warn_of_stale_member();
        const std::string log = env_text("LLTWRAPPER_LOG");
        warn("nothing is archived, the coverage work failed: %s (%s%s tells why)",
             beginning_of(pOriginalCmd).c_str(), log.empty() ? "standard output" : "the log ",
             log.c_str());
        return false;
    }
    return true;
}

/// Tells what runs.
void announce(Mode mode, const std::string& command)
{
    switch (mode) {
    case Mode::unchanged:
        // Kept: the command is printed as a format, so "%%" shows as "%"; what runs is the command.
        say("%s", squeeze_percent_pairs(command).c_str());
        break;
    case Mode::compile:
        say("lltcc cmd:\n %s \n", command.c_str());
        break;
    case Mode::link:
        if (command.empty()) {
            // Kept: the empty command runs and succeeds.
            warn("nothing is run for this link, exit status 0: %s for '%s' (lltwrapper_cfg is %d)",
                 strLinkName.empty() ? "no target name" : "no link driver",
                 beginning_of(pOriginalCmd).c_str(), iToken_wrapper);
        }
        say("lltld cmd:\n %s \n", command.c_str());
        break;
    case Mode::kernel_image:
        say("special_cmd:: %s\n", command.c_str());
        break;
    case Mode::archive:
        say("lltar cmd:\n %s \n", command.c_str());
        break;
    }
}

/// The streams that are flushed before the command runs. Kept: none for a kernel image, so in a
/// pipe its line comes after the tool's.
Flush flush_of(Mode mode)
{
    return mode == Mode::kernel_image ? Flush::none
                                      : (mode == Mode::unchanged ? Flush::out : Flush::both);
}

int run_mode(Mode mode)
{
    if (!prepare(mode)) {
        return 1;
    }
    const std::string& command = build_command(mode);
    announce(mode, command);
    if (mode == Mode::archive && stub_object_path().size() > STUB_PATH_LENGTH) {
        return 1; // the command holds a cut path
    }
    return run_command(command, flush_of(mode), status_of(mode));
}

} // namespace

bool answer_without_command(const std::vector<std::string>& arguments)
{
    if (arguments.empty()) {
        // Kept: a usage error is no failure.
        say("error usage\n");
        warn("put it in front of a tool's command, for example: lltwrapper gcc -c a.c");
        warn("'lltwrapper --help' shows the options");
        return true;
    }
    if (equals_nocase(arguments[0], "-v") || arguments[0] == "--version") {
        ShowVersion();
        return true;
    }
    if (arguments[0] == "--help") {
        say("%s", HELP);
        return true;
    }
    return false;
}

void read_project()
{
    const std::string path = env_text("qmr_current_prj_path");
    lltdbRootpath = names_project_file(path) ? split_path(path).directory : path;
    lltcovmode = env_text("qmr_coverage_stub_mold");
}

Status status_of(Mode mode)
{
    return mode == Mode::compile || mode == Mode::link ? Status::zero_or_one : Status::raw;
}

int dispatch_mode()
{
    const std::pair<int, Mode> flags[] = {{special_flag, Mode::kernel_image},
                                          {ori_flag, Mode::unchanged},
                                          {lltcc_flag, Mode::compile},
                                          {lltld_flag, Mode::link},
                                          {ar_flag, Mode::archive}};
    for (const auto& [flag, mode] : flags) {
        if (flag == 1) {
            return run_mode(mode);
        }
    }
    return run_command(pOriginalCmd, Flush::both, Status::raw);
}
