// The map of the disk: every path of the module's work area (`szCovDictPath`, D below) and of the
// project's temporary area (`szLLTTEMP`, T below), one function each. S is a coverage symbol, M the
// module name.
#pragma once

#include <cstddef>
#include <string>

// --- the work area

std::string db_dir();                     ///< D/db: the coverage database
std::string numbered_db_dir(int number);  ///< D/db/dbN: copy of a symbol's database directory
std::string merged_tab_path();            ///< D/db/.tab: merged source-file table
std::string tuple_db_path();              ///< D/db/tuple.db
std::string ini_path(const char* symbol); ///< D/ini/S.ini: copy of a symbol's INI file
std::string saved_object_path(const char* symbol); ///< D/obj/before/S: copy of a saved object
std::string stub_source_path();                    ///< D/obj/__code_measure_stub_lib_M.c
std::string stub_object_path();                    ///< D/obj/__code_measure_stub_lib_M.o
std::string stub_two_stage_object_path();          ///< D/obj/__code_measure_stub_lib_M.obj
std::string compile_command_path(); ///< D/CompileCmd.txt: the module's compile command
std::string compile_option_path();  ///< D/CompileOption.ini
std::string agent_config_path();    ///< D/M.ini

// --- the temporary area, filled by the compiler driver

std::string temp_db_dir(const char* symbol);               ///< T/codemeasure/db/dbS
std::string temp_tab_path(const char* symbol);             ///< T/codemeasure/db/dbS/.tab
std::string temp_compile_command_path(const char* symbol); ///< T/codemeasure/db/dbS/CompileCmd.txt
std::string temp_ini_path(const char* symbol);             ///< T/codemeasure/ini/S.ini
std::string temp_after_dir();                              ///< T/codemeasure/obj/after
std::string temp_saved_object_path(const char* symbol);    ///< T/codemeasure/obj/before/S

// --- bounds

/// False, after a warning, for a path of more than `length` bytes: it is not to be used then.
bool path_fits(const std::string& path, std::size_t length = 511);

// --- by the same-name mode

/// The directory that holds a symbol's own database: `temp_db_dir` when `g_iSupportSameName` is
/// nonzero, else D/db/dbS.
std::string symbol_db_dir(const char* symbol);

/// A symbol's INI file: `temp_ini_path` when `g_iSupportSameName` is nonzero, else `ini_path`.
std::string symbol_ini_path(const char* symbol);
