// The environment as TUSK_INIT.SH sets it: the wrapper and the drivers read most of it without a
// word, an unset switch counts as 0.
#include "commonfunc/env.h"
#include "commonfunc/file_ops.h"
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

constexpr const char* SOURCE_IT = "; source the project's TUSK_INIT.SH";

struct Setting {
    const char* name;
    const char* values; ///< the sound ones, between blanks
    bool is_required;
};

constexpr Setting SETTINGS[] = {
    {"qmr_coverage_stub_mold", " 0 1 2 4 5 6 7 8 9 ", true},
    {"isOverlappedCompile", " 0 1 ", true},
    {"TimerPolicy", " 0 1 ", true},
    {"SignalPolicy", " 0 1 ", true},
    {"LLT_DISABLE_SOCKET", " 0 1 ", true},
    {"LLT_DISABLE_USRCFG", " 0 1 ", true},
    {"lltwrapper_cfg", " 0 1 2 3 4 6 7 8 ", false},
    {"LLTCOV_COUNT", " lines branches conditions ", false},
};

/// A number that counts when a switch is 1.
struct Selected {
    const char* by;
    const char* name;
    int largest;
};

constexpr Selected SELECTED[] = {
    {"TimerPolicy", "TimeInterval", 1000000},
    {"SignalPolicy", "SignalNUM", 64},
};

void check_setting(const Setting& setting, Findings& findings)
{
    const std::string name = setting.name;
    const std::string value = env_text(setting.name);
    if (std::getenv(setting.name) == nullptr) {
        if (setting.is_required) {
            findings.add("settings", name + " is not set" + SOURCE_IT);
        }
    } else if (std::string(setting.values).find(" " + value + " ") == std::string::npos) {
        findings.add("settings", name + " is '" + value + "'; set it to one of" + setting.values +
                                     "and source TUSK_INIT.SH again");
    }
}

/// True when what is in the project's path may stand unquoted in a command.
bool is_plain(char c)
{
    return std::isalnum(static_cast<unsigned char>(c)) != 0 ||
           std::string("_/.,:=@%+-").find(c) != std::string::npos;
}

void check_directory(const std::string& path, const char* what, const std::string& cure,
                     Findings& findings)
{
    if (QMRPathIsDirectory(path.c_str()) == 0) {
        findings.add("places", "'" + path + "', " + what + ", is no directory; " + cure);
    } else if (::access(path.c_str(), W_OK | X_OK) != 0) {
        findings.add("places", "'" + path + "', " + what +
                                   ", cannot be written; change its owner or permissions");
    }
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
            findings.add(
                "paths",
                "no setting is set; build by lltcov run, or source the project's TUSK_INIT.SH in the project's directory");
        }
        return;
    }
    const std::string path = env_text("qmr_current_prj_path");
    const auto add = [&](const std::string& what) {
        findings.add("paths", "qmr_current_prj_path " + what);
    };
    if (path.empty()) {
        add(std::string("is not set") + SOURCE_IT + " in the project's directory");
        return;
    }
    if (path[0] != '/') {
        add("'" + path +
            "' is relative: each directory of the build gets work areas of its own; set the absolute path");
    }
    if (!std::all_of(path.begin(), path.end(), is_plain)) {
        add("'" + path +
            "' has a blank or a character that the shell takes for itself: drivers get it cut; move or link the project to a plain path");
    }
    if (path.size() > 255) {
        add("is longer than 255 bytes, the rest does not count; use a shorter path");
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
            findings.add("settings", std::string(row.name) + " is '" + env_text(row.name) +
                                         "' although " + row.by + " is 1; set it to 1 to " +
                                         std::to_string(row.largest));
        }
    }
    if (env_int("isOverlappedCompile") == 1 &&
        env_text(env_text("PlatformToken").c_str()).empty()) {
        findings.add("settings", "isOverlappedCompile is 1, but PlatformToken '" +
                                     env_text("PlatformToken") +
                                     "' names no variable with the platform's name; set both");
    }
    if (std::getenv("lltcovRootpath") == nullptr) {
        findings.add("settings", std::string("lltcovRootpath is not set") + SOURCE_IT);
    }
}

void check_places(Examined& examined, Findings& findings)
{
    const std::string area = places::temporary_area(examined.data.root);
    const char* const records = "where the compiler driver leaves its records";
    check_directory(area, records, "source the project's TUSK_INIT.SH", findings);
    for (const char* part : places::FILLED_DIRECTORIES) {
        if (QMRPathIsDirectory(area.c_str()) != 0) {
            check_directory(area + part, records, "source the project's TUSK_INIT.SH", findings);
        }
    }
    check_directory(dump_root(examined.data.root), "where programs write their counts",
                    "source the project's TUSK_INIT.SH", findings);
}
