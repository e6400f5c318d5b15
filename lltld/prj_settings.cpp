// Environment -> `g_lxprj`. The build goes on after every error here: the settings that were read
// stay, the rest keep their defaults. The order of the steps shows in the result and stays:
// "tusk_g.ini" is looked for where `init_lltld` put the project, before the path is split again.
#include "lltld/prj_settings.h"

#include "commonfunc/Caddis_func.h"
#include "commonfunc/env.h"
#include "commonfunc/file_ops.h"
#include "commonfunc/ini_profile.h"
#include "commonfunc/message.h"
#include "commonfunc/path_name.h"
#include "commonfunc/text.h"

#include <cstdlib>
#include <string>

int g_iSupportSameName = 1;

namespace
{

constexpr unsigned int CODE_NO_PROJECT_PATH = 2304;
constexpr unsigned int CODE_ENVIRONMENT_ERROR = 2309;

/// Reads a switch of the initialisation script; false when it is neither 0 nor 1.
bool read_switch(const char* name, int& field)
{
    if (std::getenv(name) == nullptr) {
        warn(
            "environment variable '%s' is not set and counts as 0; source the project's TUSK_INIT.SH",
            name);
    }
    field = env_int(name);
    return field == 0 || field == 1;
}

/// Reads the value that a switch selected; false when it is unset or -1.
bool read_selected_value(const char* name, int& field)
{
    if (std::getenv(name) == nullptr) {
        return false;
    }
    field = env_int(name);
    return field != -1;
}

bool read_platform(LinuxPrjItem& prj)
{
    prj.platformToken = env_text("PlatformToken");
    if (prj.platformToken.empty()) {
        return false;
    }
    prj.platformName = env_text(prj.platformToken.c_str());
    return !prj.platformName.empty();
}

/// Everything that the initialisation script must set; false at the first error.
bool read_policies(LinuxPrjItem& prj)
{
    if (!read_switch("isOverlappedCompile", prj.isOverlappedCompile) ||
        (prj.isOverlappedCompile == 1 && !read_platform(prj))) {
        return false;
    }
    if (!read_switch("TimerPolicy", prj.TimerPolicy) ||
        (prj.TimerPolicy == 1 && !read_selected_value("TimeInterval", prj.TimeInterval))) {
        return false;
    }
    if (!read_switch("SignalPolicy", prj.SignalPolicy) ||
        (prj.SignalPolicy == 1 && !read_selected_value("SignalNUM", prj.SignalNUM))) {
        return false;
    }
    if (std::getenv("lltcovRootpath") == nullptr) {
        return false;
    }
    prj.lltcovRootpath = env_text("lltcovRootpath");
    return true;
}

void report_policies(const LinuxPrjItem& prj)
{
    say("pls chk TUSK_init.sh cfg.   \n");
    say("isOverlappedCompile:%d\n", prj.isOverlappedCompile);
    say("PlatformToken:      %s\n", prj.platformToken.c_str());
    say("PlatformName:       %s\n", prj.platformName.c_str());
    say("TimerPolicy:        %d\n", prj.TimerPolicy);
    say("TimeInterval:       %d\n", prj.TimeInterval);
    say("SignalPolicy:       %d\n", prj.SignalPolicy);
    say("SignalNUM:          %d\n", prj.SignalNUM);
    say("lltcovRootpath:     %s\n", prj.lltcovRootpath.c_str());
    TUSKLog(LOG_COMPONENT, LOG_MODULE, LOG_ERROR, CODE_ENVIRONMENT_ERROR,
            "env error, please source TUSK_INIT.SH!\n");
}

/// The directory of the project file, or the path itself when it names none.
void set_project_path(LinuxPrjItem& prj, const std::string& path)
{
    copy_bounded(prj.szPrjPath, names_project_file(path) ? split_path(path).directory : path);
}

void read_port(LinuxPrjItem& prj)
{
    char ini[260];
    if (!format_bounded(ini, "%s/tusk_g.ini", prj.szPrjPath)) {
        warn("project path '%s' is too long: its tusk_g.ini is not read, the port stays %d",
             prj.szPrjPath, prj.m_port);
        return;
    }
    prj.m_port = read_profile_int("CompilerSettings", "port", 60000, ini);
}

/// Project path and name, and the root of the work area; notes a root that had to be cut.
void set_work_area_root(LinuxPrjItem& prj, const std::string& path)
{
    bool fits = true;
    if (names_project_file(path)) {
        const SplitPath parts = split_path(path);
        fits = copy_bounded(prj.szPrjPath, parts.directory);
        if (parts.has_name) {
            copy_bounded(prj.szPrjName, parts.name);
        }
        copy_bounded(prj.szCovDictPath, prj.szPrjPath);
    } else {
        fits = copy_bounded(prj.szCovDictPath, path);
        copy_bounded(prj.szPrjName, "linuxcaddis");
    }
    if (prj.isOverlappedCompile == 1) {
        const std::string root = prj.szCovDictPath;
        fits = copy_bounded(prj.szCovDictPath, root + "/" + prj.platformName) && fits;
    }
    prj.isCovDictPathCut = !fits;
}

} // namespace

int init_lltld()
{
    LinuxPrjItem& prj = *g_lxprj;
    prj.set_vbsflag();
    if (!read_policies(prj)) {
        report_policies(prj);
        return 0;
    }
    prj.stubmode = env_int("qmr_coverage_stub_mold");
    if (std::getenv("qmr_current_prj_path") != nullptr) {
        set_project_path(prj, env_text("qmr_current_prj_path").substr(0, 255));
    }
    if (std::getenv("SupportSameName") != nullptr) {
        g_iSupportSameName = env_int("SupportSameName") == 2 ? 2 : 1;
    }
    return 1;
}

int Caddis_LD_GetCovDictPath()
{
    LinuxPrjItem& prj = *g_lxprj;
    if (std::getenv("qmr_current_prj_path") == nullptr) {
        say("[lltld]:Cannot get the environment variable 'qmr_current_prj_path'!\n");
        TUSKLog(LOG_COMPONENT, LOG_MODULE, LOG_ERROR, CODE_NO_PROJECT_PATH,
                "Cannot get the environment variable 'qmr_current_prj_path'!\n");
        return 0;
    }
    const std::string path = env_text("qmr_current_prj_path");
    read_port(prj);
    set_work_area_root(prj, path);
    if (path.empty() || path[0] != '/') {
        warn(
            "qmr_current_prj_path '%s' is relative: each directory of the build gets a work area of its own; set an absolute path",
            path.c_str());
    }
    CUsageContext::GetInstance()->GetContext();
    return 1;
}

int Caddis_LD_Initial()
{
    say("\n>>>>>>>>>>>>>       link    >>>>>>>>>>>>>>>>>>>>>>\n");
    init_lltld();
    return Caddis_LD_GetCovDictPath() >= 1 ? 1 : 0;
}

int CodeMeasure_CreateDir()
{
    const char* const root = g_lxprj->szCovDictPath;
    if (g_lxprj->isCovDictPathCut) {
        warn("the work area '%s' is cut at %zu bytes and not created; use a shorter project path",
             root, sizeof g_lxprj->szCovDictPath - 1);
        return 0;
    }
    if (QMRCreateDirectory(root) <= 0) {
        return 0;
    }
    for (const char* part : {"db", "log", "obj", "ini", "obj/before", "obj/after"}) {
        char path[512];
        if (!format_bounded(path, "%s/%s", root, part)) {
            warn("'%s/%s' is longer than %zu bytes and not created; use a shorter project path",
                 root, part, sizeof path - 1);
            return 0;
        }
        if (QMRCreateDirectory(path) <= 0) {
            return 0;
        }
    }
    return 1;
}
