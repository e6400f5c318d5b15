// Source-file tables: the instrumented sources of one coverage database directory with their
// numbering of instrumentation points.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>

/// One source of a table, 280 bytes in the file and in memory.
struct _SOURCEFILE_OBJECT {
    std::int32_t fileid = 0;         ///< number in the merged table, and of the directory db<N>
    char szName[256] = {};           ///< file name; up to its last full stop the coverage symbol
    std::uint32_t size = 0;          ///< source size, by the compiler driver; written as 0 here
    std::uint32_t mtime = 0;         ///< source modification time, likewise
    std::int32_t inststartpoint = 0; ///< index of the first counter in the module's numbering
    std::int32_t instnum = 0;        ///< number of instrumentation points
    std::uint32_t bFocus : 1;        ///< flag of the compiler driver
    std::uint32_t bmodified : 1;     ///< likewise
    std::uint32_t bCompiled : 1;     ///< likewise
    std::uint32_t reserved : 29;     ///< zero
};

/// The record's name; one without a NUL counts up to its last byte but one.
inline std::string source_name(const _SOURCEFILE_OBJECT& record)
{
    return {record.szName, ::strnlen(record.szName, sizeof record.szName - 1)};
}

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

/// Releases the table's records and zeroes it.
void release_table(_SOURCEFILE_TAB& table);
