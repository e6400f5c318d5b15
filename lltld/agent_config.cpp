// Sections "usercfg", "modcfg" and "InstInfo" of an INI file in the work area.
#include "lltld/agent_config.h"

#include "commonfunc/Caddis_func.h"
#include "commonfunc/file_ops.h"
#include "commonfunc/ini_profile.h"
#include "commonfunc/message.h"
#include "commonfunc/path_name.h"
#include "contract/names.h"
#include "lltld/counter_mode.h"
#include "lltld/cov_paths.h"
#include "lltld/db_number.h"

#include <cstdio>
#include <new>
#include <string>

namespace
{

/// Bytes set aside for the list of entries, and bytes of an entry and of a path that are used.
constexpr std::size_t LIST_SIZE = 1048576;
constexpr std::size_t ENTRY_LENGTH = 319;
constexpr std::size_t FILE_PATH_LENGTH = 259;

void write_user_settings(const LinuxPrjItem& prj, const char* path)
{
    write_profile_int("usercfg", "isOverlappedCompile", prj.isOverlappedCompile, path);
    if (prj.TimerPolicy == 1) {
        write_profile_int("usercfg", "TimeInterval", prj.TimeInterval, path);
    }
    if (prj.SignalPolicy == 1) {
        write_profile_int("usercfg", "SignalNUM", prj.SignalNUM, path);
    }
    if (!prj.lltcovRootpath.empty()) {
        write_profile_string("usercfg", "lltcovRootpath", prj.lltcovRootpath.c_str(), path);
    }
}

void write_module_settings(const LinuxPrjItem& prj, int elementcount, const char* path)
{
    write_profile_string("modcfg", "para1", prj.modName, path);
    write_profile_string("modcfg", "para2", prj.szCovDictPath, path);
    write_profile_int("modcfg", "para3", elementcount, path);
    write_profile_int("modcfg", "para4", prj.stubmode + 1, path);
}

std::string entry_of(const _SOURCEFILE_OBJECT& record)
{
    const CounterMode mode = counter_mode(g_lxprj->stubmode);
    const std::string name = source_name(record);
    const std::string entry = std::to_string(record.fileid) + "##" + name + "##" ARRAY_PREFIX +
                              identifier_form(stem_of(name)).c_str() + "##" +
                              std::to_string(registered_size(mode, record.instnum)) + "##" +
                              std::to_string(record.instnum);
    return entry.substr(0, ENTRY_LENGTH);
}

} // namespace

int write_agent_config(const _SOURCEFILE_TAB& table)
{
    std::string list;
    try {
        list.reserve(LIST_SIZE);
    } catch (const std::bad_alloc&) {
        std::puts("|========before write config file for agent===========|");
        return 0;
    }
    const std::string path = agent_config_path();
    if (path.size() > FILE_PATH_LENGTH) {
        warn("'%s' is not written: its path is longer than %zu bytes; use a shorter project path",
             path.c_str(), FILE_PATH_LENGTH);
        return 0;
    }
    write_user_settings(*g_lxprj, path.c_str());
    write_module_settings(*g_lxprj, table.elementcount, path.c_str());
    for (int i = 0; i < table.elementcount; ++i) {
        const _SOURCEFILE_OBJECT& record = table.objlist[i];
        if (QMRFileExists(numbered_db_dir(record.fileid).c_str()) == 0) {
            return 0;
        }
        list += (i > 0 ? ";" : "") + entry_of(record);
    }
    write_profile_string("InstInfo", "info", list.c_str(), path.c_str());
    return 1;
}
