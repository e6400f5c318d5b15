// Paths are built whole, however long; an operation with a stated bound tests the length itself.
#include "lltld/cov_paths.h"

#include "commonfunc/Caddis_func.h"
#include "commonfunc/message.h"
#include "contract/names.h"
#include "lltld/prj_settings.h"

namespace
{

std::string in_work_area(const std::string& rest)
{
    return g_lxprj->szCovDictPath + rest;
}

std::string in_temp_area(const std::string& rest)
{
    return std::string(g_lxprj->szLLTTEMP) + "/" AREA_NAME + rest;
}

std::string stub_path(const char* extension)
{
    return in_work_area(std::string("/obj/" STUB_PREFIX) + g_lxprj->modName + extension);
}

} // namespace

std::string db_dir()
{
    return in_work_area("/db");
}
std::string numbered_db_dir(int number)
{
    return in_work_area("/db/db" + std::to_string(number));
}
std::string merged_tab_path()
{
    return in_work_area("/db/.tab");
}
std::string tuple_db_path()
{
    return in_work_area("/db/tuple.db");
}
std::string ini_path(const char* symbol)
{
    return in_work_area(std::string("/ini/") + symbol + ".ini");
}
std::string saved_object_path(const char* symbol)
{
    return in_work_area(std::string("/obj/before/") + symbol);
}
std::string stub_source_path()
{
    return stub_path(".c");
}
std::string stub_object_path()
{
    return stub_path(".o");
}
std::string stub_two_stage_object_path()
{
    return stub_path(".obj");
}
std::string project_file_path()
{
    return in_work_area("/.prj");
}
std::string compile_command_path()
{
    return in_work_area("/CompileCmd.txt");
}
std::string compile_option_path()
{
    return in_work_area("/CompileOption.ini");
}
std::string agent_config_path()
{
    return in_work_area(std::string("/") + g_lxprj->modName + ".ini");
}

std::string temp_db_dir(const char* symbol)
{
    return in_temp_area(std::string("/db/db") + symbol);
}
std::string temp_tab_path(const char* symbol)
{
    return temp_db_dir(symbol) + "/.tab";
}
std::string temp_compile_command_path(const char* symbol)
{
    return temp_db_dir(symbol) + "/CompileCmd.txt";
}
std::string temp_ini_path(const char* symbol)
{
    return in_temp_area(std::string("/ini/") + symbol + ".ini");
}
std::string temp_after_dir()
{
    return in_temp_area("/obj/after");
}
std::string temp_saved_object_path(const char* symbol)
{
    return in_temp_area(std::string("/obj/before/") + symbol);
}

bool path_fits(const std::string& path, std::size_t length)
{
    if (path.size() > length) {
        warn("'%s' is longer than %zu bytes and not used; use a shorter project path", path.c_str(),
             length);
    }
    return path.size() <= length;
}

std::string symbol_db_dir(const char* symbol)
{
    return g_iSupportSameName != 0 ? temp_db_dir(symbol)
                                   : in_work_area(std::string("/db/db") + symbol);
}

std::string symbol_ini_path(const char* symbol)
{
    return g_iSupportSameName != 0 ? temp_ini_path(symbol) : ini_path(symbol);
}
