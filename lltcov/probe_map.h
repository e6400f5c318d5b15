// Which lines and functions the probes of an instrumented source stand for: "probes.txt" of the
// compiler driver, whose FORMATS.md describes it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// One line that a probe counts.
struct MappedLine {
    std::uint32_t path;     ///< index into the map's paths
    std::uint32_t line;     ///< from 1
    std::uint32_t function; ///< number of the function whose code it is
    std::uint32_t probe;
};

/// A function and the first of its probes.
struct MappedFunction {
    std::string symbol; ///< assembler name
    std::uint32_t path; ///< index into the map's paths
    std::uint32_t line; ///< from 1
    std::uint32_t probe;
    bool has_probe; ///< false for a function of which no probe has lines
};

/// The map of one instrumented source.
struct ProbeMap {
    std::string source; ///< absolute path
    std::string object; ///< absolute path
    std::vector<std::string> paths;
    std::vector<MappedLine> lines; ///< by path, line and function
    std::vector<MappedFunction> functions;
};

/// Reads the text of a map of a source with so many probes; throws `FormatError` for one that is
/// not whole or not sound.
ProbeMap read_probe_map(std::string_view text, std::uint32_t probes);
