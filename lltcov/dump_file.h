// What one run of a program left of one module: a file of the coverage runtime, whose FORMATS.md
// describes it.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

/// Probes of one source that are believed; more would be gigabytes of generated code.
constexpr std::uint32_t MAX_PROBES = 1U << 24;

/// Equal counts of consecutive probes.
struct CountRun {
    std::uint64_t count;
    std::uint32_t times;
};

/// The counts of one instrumented source.
struct DumpedSource {
    std::string_view symbol;    ///< coverage symbol
    std::uint32_t probes = 0;   ///< number of probes, the sum of the runs' times
    std::vector<CountRun> runs; ///< in probe order
};

/// The content of a dump file. Its texts are parts of the text that was read.
struct Dump {
    std::string_view module; ///< module name
    std::string_view buid;   ///< build id of the module's stub
    std::string_view area;   ///< the module's work area
    std::vector<DumpedSource> sources;
};

/// Reads a dump file's text; throws `FormatError` for one that is not whole or not sound.
Dump read_dump(std::string_view text);
