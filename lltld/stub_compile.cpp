// The recorded command is used as it was read: it ends before "-o", and nothing is trimmed.
#include "lltld/stub_compile.h"

#include "commonfunc/file_io.h"
#include "commonfunc/message.h"
#include "commonfunc/path_search.h"
#include "commonfunc/shell.h"
#include "lltld/cov_paths.h"
#include "lltld/db_tidy.h"
#include "lltld/program_objects.h"

#include <cstdio>
#include <string>

char g_lltusercmd[1024];
char g_lltusercmd2[1024];

namespace
{

/// Room for the stub's paths after the recorded command, and for a whole second-stage command.
constexpr std::size_t ROOM_AFTER_PREFIX = 1023;
constexpr std::size_t SECOND_STAGE_LENGTH = 2047;

/// The recorded command names its driver by the path that it had when the sources were compiled.
void warn_of_moved_driver(const std::string& command)
{
    const std::string driver = command.substr(0, command.find(' '));
    if (driver[0] == '/' && !is_program(driver)) {
        warn(
            "'%s', which the sources of this library were compiled with, is gone; when it was moved, clean the project and build it anew",
            driver.c_str());
    }
}

/// Runs the command if it fits its bound; true when it returned 0.
bool run_whole(const std::string& command, std::size_t bound)
{
    if (command.size() > bound) {
        warn(
            "the stub is not compiled: its command has %zu bytes, more than %zu; use a shorter project path",
            command.size(), bound);
        return false;
    }
    if (run_helper(command, copy_saved_objects) != 0) {
        warn_of_moved_driver(command);
        return false;
    }
    return true;
}

bool run_two_stages(const std::string& prefix, std::size_t bound, const std::string& second,
                    const char* output)
{
    const std::string object = stub_two_stage_object_path();
    return run_whole(prefix + " -o " + object + " -c " + stub_source_path(), bound) &&
           run_whole(second + output + stub_object_path() + " " + object, SECOND_STAGE_LENGTH);
}

bool run_single_stage(const std::string& prefix, std::size_t bound)
{
    // Kept: two blanks but for kernel modules; recorded build logs are compared.
    const bool module = iToken_wrapper == 2 || (iToken_wrapper == 1 && iToken_warpper_inner == 1);
    const std::string command =
        prefix + (module ? " -o " : "  -o ") + stub_object_path() + " -c " + stub_source_path();
    std::puts(command.substr(0, bound).c_str());
    return run_whole(command, bound);
}

} // namespace

int LD_CompileCovInitCodeFile()
{
    std::string text;
    const std::string path = compile_command_path();
    const Reading reading = read_whole_file(path, text);
    if (reading != Reading::done && reading != Reading::empty) {
        if (reading != Reading::no_memory) {
            std::printf("open file [%s] error.", path.c_str());
        }
        return 0;
    }
    const std::string prefix = text.c_str();
    const std::size_t bound = text.size() + ROOM_AFTER_PREFIX;
    bool done = false;
    if (g_lltusercmd[0] != '\0') {
        done = run_two_stages(prefix, bound, g_lltusercmd, " -o ");
    } else if (g_lltusercmd2[0] != '\0') {
        done = run_two_stages(prefix, bound, g_lltusercmd2, " ");
    } else {
        done = run_single_stage(prefix, bound);
    }
    return done ? 1 : 0;
}
