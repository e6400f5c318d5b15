// Binds the places of a project to its settings. Paths are built whole, however long; an operation
// with a stated bound tests the length itself.
#include "lltld/cov_paths.h"

#include "commonfunc/Caddis_func.h"
#include "commonfunc/message.h"
#include "contract/places.h"
#include "lltld/prj_settings.h"

namespace
{

std::string stub_path(const char* extension)
{
    return places::stub(g_lxprj->szCovDictPath, g_lxprj->modName, extension);
}

std::string temp_area()
{
    return places::area_in(g_lxprj->szLLTTEMP);
}

} // namespace

std::string db_dir()
{
    return places::db(g_lxprj->szCovDictPath);
}
std::string numbered_db_dir(int number)
{
    return places::numbered_db(g_lxprj->szCovDictPath, number);
}
std::string merged_tab_path()
{
    return places::table(db_dir());
}
std::string tuple_db_path()
{
    return places::tuple_db(g_lxprj->szCovDictPath);
}
std::string ini_path(const char* symbol)
{
    return places::ini(g_lxprj->szCovDictPath, symbol);
}
std::string saved_object_path(const char* symbol)
{
    return places::saved_object(g_lxprj->szCovDictPath, symbol);
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
std::string compile_command_path()
{
    return places::compile_command(g_lxprj->szCovDictPath);
}
std::string compile_option_path()
{
    return places::compile_option(g_lxprj->szCovDictPath);
}
std::string agent_config_path()
{
    return places::agent_config(g_lxprj->szCovDictPath, g_lxprj->modName);
}

std::string temp_db_dir(const char* symbol)
{
    return places::symbol_db(temp_area(), symbol);
}
std::string temp_tab_path(const char* symbol)
{
    return places::table(temp_db_dir(symbol));
}
std::string temp_compile_command_path(const char* symbol)
{
    return places::compile_command(temp_db_dir(symbol));
}
std::string temp_ini_path(const char* symbol)
{
    return places::ini(temp_area(), symbol);
}
std::string temp_after_dir()
{
    return temp_area() + "/obj/after";
}
std::string temp_saved_object_path(const char* symbol)
{
    return places::saved_object(temp_area(), symbol);
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
                                   : places::symbol_db(g_lxprj->szCovDictPath, symbol);
}

std::string symbol_ini_path(const char* symbol)
{
    return g_iSupportSameName != 0 ? temp_ini_path(symbol) : ini_path(symbol);
}
