// Pass 2 over the merged table: numbering of the points, the counter arrays of the stub, and the
// keys of the work area's project file.
#pragma once

#include "lltld/source_tab.h"

#include <cstdint>
#include <cstdio>
#include <string>

/// The part of the text before its last full stop, or the whole text when there is none.
std::string stem_of(const std::string& name);

/// Completes each record of the table from its symbol's own table, appends it to `tab`, and writes
/// its counter-array line to `stub` (null: to none); then writes the keys of the project file.
/// Changes the records that `table` shares with the caller. Returns 1, or 0 at the first failure,
/// after a message.
int LD_UpDateCovDbTab(_SOURCEFILE_TAB table, std::FILE* stub, std::FILE* tab);

/// `LD_UpDateCovDbTab` with the work area's merged table, which is replaced. False when that
/// failed.
bool write_merged_table(const _SOURCEFILE_TAB& table, std::FILE* stub);

/// Completes one record from the table of symbol `name`, appends it to `tab` and advances the
/// running start index. Returns 1, or 0 after a message; a symbol with an empty table has no
/// record and is left out with result 1.
int RenameFileDBDir(const char* name, std::FILE* tab, _SOURCEFILE_OBJECT* record,
                    std::uint64_t* start);

/// Writes a key of section "project" of the work area's ".prj"; 1 on success, else 0.
int CodeMeasure_Tool_WriteScanCfgString(const char* key, const char* value);

/// The same with a number in decimal.
int CodeMeasure_Tool_WriteScanCfgInt(const char* key, int value);
