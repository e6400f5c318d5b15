// What the runs of a program left of one module: a file of the coverage runtime, whose format
// dump_format.h describes.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

/// The counts of one instrumented source.
struct DumpedSource {
    std::string_view symbol;             ///< coverage symbol
    std::vector<std::uint64_t> counters; ///< the words of its array
};

/// The content of a dump file. Its texts are parts of the bytes that were read.
struct Dump {
    std::string_view module; ///< module name
    std::string_view buid;   ///< build id of the module's stub
    std::string_view area;   ///< the module's work area
    std::string_view test;   ///< name of the test that ran; empty when none was named
    std::uint64_t runs = 0;  ///< processes whose counts these are
    std::vector<DumpedSource> sources;
};

/// Reads a dump file's content; throws `FormatError` for one that is not whole or not sound. An
/// empty file is a dump of no run: its writer was killed.
Dump read_dump(std::string_view bytes);
