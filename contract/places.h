// Where everything of a project is: its directory ROOT holds a work area for each module, and the
// temporary area, which compiles of all modules share. Both are areas of one layout: a database
// with a directory per symbol or number (DB), an INI file and a saved object per symbol (S). Pure:
// paths are built whole, however long, and nothing is looked up.
#pragma once

#include <string>

namespace places
{

// --- areas

std::string area_in(const std::string& directory);        ///< DIRECTORY/codemeasure
std::string temporary_directory(const std::string& root); ///< ROOT/LLTTEMP
std::string temporary_area(const std::string& root);      ///< ROOT/LLTTEMP/codemeasure

/// ROOT/MODULE/codemeasure
std::string work_area(const std::string& root, const std::string& module);

/// AREA/../../LLTTEMP: the temporary directory as the archive step finds it. Where the module's
/// directory is a link, that is beside its target.
std::string temporary_directory_near(const std::string& area);

// --- in an area

/// The directories that a compile fills.
inline constexpr const char* FILLED_DIRECTORIES[] = {"/db", "/ini", "/obj/before"};

std::string db(const std::string& area);                      ///< AREA/db
std::string numbered_db(const std::string& area, int number); ///< AREA/db/dbN: in work areas

/// AREA/db/dbS: in the temporary area
std::string symbol_db(const std::string& area, const std::string& symbol);

std::string ini(const std::string& area, const std::string& symbol);          ///< AREA/ini/S.ini
std::string saved_object(const std::string& area, const std::string& symbol); ///< AREA/obj/before/S

// --- in a directory of the database

std::string table(const std::string& directory); ///< DB/.tab: AREA/db has the merged table
std::string
compile_command(const std::string& directory);    ///< DB/CompileCmd.txt; AREA has the module's
std::string record(const std::string& directory); ///< DB/record

// --- in a work area

std::string tuple_db(const std::string& area);         ///< AREA/db/tuple.db
std::string project_file(const std::string& area);     ///< AREA/.prj
std::string compile_option(const std::string& area);   ///< AREA/CompileOption.ini
std::string linked_libraries(const std::string& area); ///< AREA/libraries.txt
std::string stub_state(const std::string& area);       ///< AREA/stub.state

/// AREA/MODULE.ini
std::string agent_config(const std::string& area, const std::string& module);

/// AREA/obj/__code_measure_stub_lib_MODULE and the extension
std::string stub(const std::string& area, const std::string& module, const std::string& extension);

} // namespace places
