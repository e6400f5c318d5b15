// A driver's name stands in the command as it is, and the shell looks for it. The installed ones
// have a directory of their own, for names such as "hotpatch" say too little among other programs.
#include "lltwrapper/driver_path.h"

#include "commonfunc/env.h"
#include "commonfunc/file_ops.h"
#include "commonfunc/message.h"
#include "commonfunc/own_files.h"
#include "commonfunc/path_search.h"

#include <cstdlib>
#include <string>

namespace
{

/// What the shell exits with when it does not find a program.
constexpr int NOT_FOUND = 127;

} // namespace

void put_drivers_on_path()
{
    const std::string path = env_text("PATH");
    const std::string directory = installed_drivers();
    if (!path.empty() && (":" + path + ":").find(":" + directory + ":") == path.npos &&
        is_program(directory + "/lltcc")) {
        ::setenv("PATH", (path + ":" + directory).c_str(), 1);
    }
}

void warn_of_missing_driver(const std::string& command, int status)
{
    const std::string driver = command.substr(0, command.find(' '));
    if (status == NOT_FOUND && !driver.empty() && program_on_path(driver).empty()) {
        warn(
            "the driver '%s' is neither on PATH nor installed with '%s/lltwrapper'; if that was moved alone, move its whole installation, or append the directory of '%s' to PATH",
            driver.c_str(), program_directory().c_str(), driver.c_str());
    }
}
