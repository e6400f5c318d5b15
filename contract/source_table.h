// Source-file tables, ".tab": the instrumented sources of one database directory with their
// numbering of instrumentation points. The compiler driver writes one of its source, the archive
// and link steps merge them, lltcov reads both.
//
// A plain sequence of 280-byte records, little-endian, no header, no count. Archive steps and links
// ignore a remainder, lltcov takes a table that has one for damaged.
//
//   offset  size  field
//        0     4  fileid           260     4  size          268     4  inststartpoint
//        4   256  szName           264     4  mtime         272     4  instnum
//                                                           276     4  flags, bits 0 to 2
//
// szName is SYMBOL.EXTENSION, or SYMBOL.EXTENSION:N where the last N bytes of the source's array
// join two runs by "or".
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// One source of a table, 280 bytes in the file and in memory.
struct _SOURCEFILE_OBJECT {
    std::int32_t fileid = 0;         ///< number in the merged table, and of the directory db<N>
    char szName[256] = {};           ///< file name; up to its last full stop the coverage symbol
    std::uint32_t size = 0;          ///< source size, by the compiler driver; 0 in merged tables
    std::uint32_t mtime = 0;         ///< source modification time, likewise
    std::int32_t inststartpoint = 0; ///< index of the first counter in the module's numbering
    std::int32_t instnum = 0;        ///< number of instrumentation points
    std::uint32_t bFocus : 1;        ///< flag of the compiler driver
    std::uint32_t bmodified : 1;     ///< likewise
    std::uint32_t bCompiled : 1;     ///< likewise
    std::uint32_t reserved : 29;     ///< zero
};

/// The record's name; one without a NUL counts up to its last byte but one.
std::string source_name(const _SOURCEFILE_OBJECT& record);

/// The coverage symbol that the record's name begins with.
std::string symbol_in_table(const _SOURCEFILE_OBJECT& record);

/// The name of a source in tables, by its coverage symbol, its extension, and how many bytes at the
/// end of its array join two runs by "or".
std::string name_in_table(const std::string& symbol, const std::string& extension,
                          std::uint32_t or_bytes);

/// The record as it stands in files; a view into it.
std::string_view bytes_of(const _SOURCEFILE_OBJECT& record);

/// The records of a table; none when it holds a part of one.
std::vector<_SOURCEFILE_OBJECT> read_source_table(std::string_view bytes);
