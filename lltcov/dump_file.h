// What the runs of a program left of one module: a file of the coverage runtime, whose FORMATS.md
// describes it.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

/// The counters of one instrumented source.
struct DumpedSource {
    std::string_view symbol;             ///< coverage symbol
    std::vector<std::uint64_t> counters; ///< its array
};

/// The content of a dump file. Its texts are parts of the bytes that were read.
struct Dump {
    std::string_view module; ///< module name
    std::string_view buid;   ///< build id of the module's stub
    std::string_view area;   ///< the module's work area
    std::string_view test;   ///< name of the test; empty for runs without one
    std::uint64_t runs = 0;  ///< processes whose counts are in the file
    std::vector<DumpedSource> sources;
};

/// Reads a dump file's bytes; none at all are a dump of no run. Throws `FormatError` for what is
/// not whole or not sound.
Dump read_dump(std::string_view bytes);
