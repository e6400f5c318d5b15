// Goes through a table of checks and prints what each finds. Another check is another row.
#include "lltcov/doctor/doctor.h"

#include "commonfunc/own_files.h"
#include "commonfunc/shell.h"
#include "lltcov/common/command_line.h"
#include "lltcov/common/commands.h"
#include "lltcov/common/project.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>

namespace
{

namespace fs = std::filesystem;

struct Check {
    const char* name;
    void (*look)(Examined& examined, Findings& findings);
};

constexpr Check CHECKS[] = {
    {"project path", check_project_path},
    {"settings", check_settings},
    {"places", check_places},
    {"programs", check_programs},
    {"shims", check_shims},
    {"builds", check_builds},
    {"sources", check_sources},
    {"objects", check_objects},
    {"archives", check_archives},
    {"names", check_names},
    {"sockets", check_sockets},
    {"dumps", check_dumps},
    {"leftovers", check_leftovers},
};

std::vector<std::string> files_below(const std::string& root)
{
    std::vector<std::string> files;
    std::error_code error;
    const auto options = fs::directory_options::skip_permission_denied;
    for (fs::recursive_directory_iterator at(root, options, error), end; !error && at != end;
         at.increment(error)) {
        if (at->path().filename() == ".git") {
            at.disable_recursion_pending();
        } else if (fs::is_regular_file(at->symlink_status(error))) {
            files.push_back(at->path());
        }
    }
    return files;
}

/// Prints the findings under the check's name; the number of lines.
std::size_t print(const char* name, const Findings& findings)
{
    for (const std::string& line : findings.lines()) {
        std::printf("%s: %s\n", name, line.c_str());
    }
    return findings.lines().size();
}

} // namespace

std::string cured_by(const std::string& command, const std::string& where)
{
    return "; " + (where.empty() ? "" : where + ", ") + "type: " + command;
}

std::string settings_command()
{
    const std::string settings = own_file("TUSK_INIT.SH");
    return ". " + (settings.empty() ? "TUSK_INIT.SH" : shell_word(settings));
}

int run_doctor(const Arguments& arguments)
{
    const CommandLine line(arguments, {}, {"--project"});
    line.refuse_operands();
    Findings reading;
    std::string root;
    try {
        root = project_root(line);
    } catch (const UsageError& error) {
        if (line.has("--project")) {
            throw;
        }
        std::printf("project path: %s%s\n", error.what(),
                    cured_by("unset qmr_current_prj_path && " + settings_command()).c_str());
        return 1;
    }
    Examined examined = {read_modules(root, reading), files_below(project_directory(root))};
    std::size_t lines = print("modules", reading);
    bool is_sick = reading.has_problems();
    for (const Check& check : CHECKS) {
        Findings findings;
        check.look(examined, findings);
        lines += print(check.name, findings);
        is_sick = is_sick || findings.has_problems();
    }
    if (lines == 0) {
        const std::size_t modules = examined.data.modules.size();
        std::printf(
            "nothing found: %zu modules in '%s'%s\n", modules, examined.data.directory.c_str(),
            modules == 0
                ? "; what was built before needs 'make clean', then 'lltcov run -- make', with CC=gcc if it names its compiler by a path"
                : "");
    }
    return is_sick ? 1 : 0;
}
