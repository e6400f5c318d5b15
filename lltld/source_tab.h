// The operations on source-file tables.
#pragma once

#include "contract/source_table.h" // IWYU pragma: export

#include <cstdio>

/// A table in memory; starts as all zeros. Copies share the records.
struct _SOURCEFILE_TAB {
    _SOURCEFILE_OBJECT* objlist = nullptr; ///< allocated by `malloc`, freed by the table's owner
    int listsize = 0;                      ///< capacity of `objlist` in bytes of file content
    int elementcount = 0;                  ///< number of records read
};

/// Reads a table file, growing the buffer as needed. Returns 1, or 0 after a message. An empty
/// file is logged and leaves the table as it was.
int GetOneSourceFileTabInfo2(const char* path, _SOURCEFILE_TAB* table);

/// The same for the merged table of the work area.
int CodeMeasure_Client_GetSourceFileTab(_SOURCEFILE_TAB* table);

/// Appends a record with the counter's value and the first name of the table file at `path` to
/// `out`, and increments the counter; reads through the work table `table`. Returns 1, also when
/// there is no file or never was a record (nothing is written then), or 0 after a message.
int SrcFileTabInfoWriteToCovTab(const char* path, std::FILE* out, _SOURCEFILE_TAB* table,
                                int* counter);

/// Appends a record to a table file.
bool write_record(const _SOURCEFILE_OBJECT& record, std::FILE* out);

/// Releases the table's records and zeroes it.
void release_table(_SOURCEFILE_TAB& table);
