// The environment as TUSK_INIT.SH sets it: the wrapper and the drivers read most of it without
// complaint, and an unset switch counts as 0.
#include "commonfunc/env.h"
#include "commonfunc/file_ops.h"
#include "commonfunc/path_name.h"
#include "commonfunc/shell.h"
#include "contract/places.h"
#include "lltcov/common/console.h"
#include "lltcov/common/project.h"
#include "lltcov/doctor/doctor.h"
#include "lltcov/report/project_data.h"
#include "lltcov/shims/shims.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <iterator>
#include <string>
#include <unistd.h>

namespace
{

struct Setting {
    const char* name;
    const char* values; ///< sound values, a blank before each; TUSK_INIT.SH sets the first one
    bool is_required;
};

constexpr Setting SETTINGS[] = {
    {"qmr_coverage_stub_mold", " 1 0 2 4 5 6 7 8 9", true},
    {"isOverlappedCompile", " 0 1", true},
    {"TimerPolicy", " 0 1", true},
    {"SignalPolicy", " 0 1", true},
    {"LLT_DISABLE_SOCKET", " 1 0", true},
    {"LLT_DISABLE_USRCFG", " 1 0", true},
    {"lltwrapper_cfg", " 0 1 2 3 4 6 7 8", false},
    {"LLTCOV_COUNT", " branches lines conditions", false},
};

/// A number that counts when a switch is 1.
struct Selected {
    const char* by;
    const char* name;
    int largest;
    const char* usual; ///< the value that TUSK_INIT.SH sets
};

constexpr Selected SELECTED[] = {
    {"TimerPolicy", "TimeInterval", 1000000, "60"},
    {"SignalPolicy", "SignalNUM", 64, "10"},
};

void check_setting(const Setting& setting, Findings& findings)
{
    const std::string name = setting.name;
    const std::string value = env_text(setting.name);
    if (std::getenv(setting.name) == nullptr) {
        if (setting.is_required) {
            findings.add("settings", name + " is not set" + cured_by(settings_command()));
        }
        return;
    }
    const std::string values = setting.values;
    if ((values + " ").find(" " + value + " ") == std::string::npos) {
        findings.add("settings", name + " is '" + value + "', not one of" + values +
                                     cured_by("export " + name + "=" +
                                              values.substr(1, values.find(' ', 1) - 1)));
    }
}

/// True when what is in the project's path may stand unquoted in a command.
bool is_plain(char c)
{
    return std::isalnum(static_cast<unsigned char>(c)) != 0 ||
           std::string("_/.,:=@%+-").find(c) != std::string::npos;
}

void check_directory(const std::string& path, const char* what, Findings& findings)
{
    const std::string named = "'" + path + "', " + what;
    if (QMRPathIsDirectory(path.c_str()) == 0) {
        findings.add("places",
                     named + ", is no directory" + cured_by("mkdir -p " + shell_word(path)));
    } else if (::access(path.c_str(), W_OK | X_OK) != 0) {
        findings.add("places", named + ", cannot be written" +
                                   cured_by("sudo chown -R \"$(id -un)\" " + shell_word(path) +
                                            " && chmod -R u+rwX " + shell_word(path)));
    }
}

/// Gives the project a plain path, by which it is then built.
std::string link_project(const Examined& examined)
{
    return cured_by("ln -s " + shell_word(project_directory(examined.data.root)) +
                    " ~/project && cd ~/project && unset qmr_current_prj_path && " +
                    settings_command());
}

} // namespace

bool has_no_settings()
{
    return env_text("qmr_current_prj_path").empty() &&
           std::none_of(std::begin(SETTINGS), std::end(SETTINGS), [](const Setting& setting) {
               return setting.is_required && std::getenv(setting.name) != nullptr;
           });
}

void check_project_path(Examined& examined, Findings& findings)
{
    if (has_no_settings()) {
        if (QMRPathIsDirectory(kept_place(examined.data.root, RUN_SHIMS).c_str()) == 0) {
            findings.add("paths", "no setting is set" +
                                      cured_by("lltcov run -- make", "in the project's directory"));
        }
        return;
    }
    const std::string path = env_text("qmr_current_prj_path");
    const auto add = [&](const std::string& what) {
        findings.add("paths", "qmr_current_prj_path " + what);
    };
    if (path.empty()) {
        add("is not set" + cured_by("cd " + shell_word(project_directory(examined.data.root)) +
                                    " && " + settings_command()));
        return;
    }
    if (path[0] != '/') {
        add("'" + path + "' is relative: each directory of the build gets work areas of its own" +
            cured_by("export qmr_current_prj_path=" + shell_word(absolute_path(path))));
    }
    if (!std::all_of(path.begin(), path.end(), is_plain)) {
        add("'" + path +
            "' has a blank or a character that the shell takes for itself: drivers get it cut" +
            link_project(examined));
    }
    if (path.size() > 255) {
        add("is longer than 255 bytes, the rest does not count" + link_project(examined));
    }
}

void check_settings(Examined&, Findings& findings)
{
    if (has_no_settings()) {
        return;
    }
    for (const Setting& setting : SETTINGS) {
        check_setting(setting, findings);
    }
    for (const Selected& row : SELECTED) {
        const int value = env_int(row.name);
        if (env_int(row.by) == 1 && (value < 1 || value > row.largest)) {
            findings.add("settings",
                         std::string(row.name) + " is '" + env_text(row.name) + "' although " +
                             row.by + " is 1, not 1 to " + std::to_string(row.largest) +
                             cured_by(std::string("export ") + row.name + "=" + row.usual));
        }
    }
    if (env_int("isOverlappedCompile") == 1 &&
        env_text(env_text("PlatformToken").c_str()).empty()) {
        findings.add("settings", "isOverlappedCompile is 1, but PlatformToken '" +
                                     env_text("PlatformToken") +
                                     "' names no variable with the platform's name" +
                                     cured_by("export PlatformToken=PLATFORM PLATFORM=NAME"));
    }
    if (std::getenv("lltcovRootpath") == nullptr) {
        findings.add("settings", "lltcovRootpath is not set" + cured_by(settings_command()));
    }
}

void check_places(Examined& examined, Findings& findings)
{
    const std::string area = places::temporary_area(examined.data.root);
    const char* const records = "where the compiler driver leaves its records";
    if (has_no_settings() && QMRPathIsDirectory(area.c_str()) == 0) {
        return; // they are made by the first build
    }
    check_directory(area, records, findings);
    for (const char* part : places::FILLED_DIRECTORIES) {
        if (QMRPathIsDirectory(area.c_str()) != 0) {
            check_directory(area + part, records, findings);
        }
    }
    check_directory(dump_root(examined.data.root), "where programs write their counts", findings);
}
