// The coverage of a project: what the sources' lines and functions count over all runs and all
// objects.
#pragma once

#include "lltcov/dump_file.h"
#include "lltcov/probe_map.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

/// Counts stay at this value when a sum would be larger: readers of reports take signed numbers.
constexpr std::uint64_t MAX_COUNT = INT64_MAX;

/// The sum of two counts.
constexpr std::uint64_t sum_of_counts(std::uint64_t a, std::uint64_t b)
{
    return b > MAX_COUNT || a > MAX_COUNT - b ? MAX_COUNT : a + b;
}

/// Hit and all of something.
struct Rate {
    std::size_t hit = 0;
    std::size_t total = 0;

    void add(std::uint64_t count)
    {
        hit += count > 0 ? 1 : 0;
        ++total;
    }
};

/// A function of a source.
struct FunctionCoverage {
    std::uint32_t line = 0;
    std::uint64_t count = 0;
};

/// A source or header.
struct SourceCoverage {
    std::map<std::uint32_t, std::uint64_t> lines;      ///< counts by line
    std::map<std::string, FunctionCoverage> functions; ///< by assembler name
};

/// By absolute path.
using Coverage = std::map<std::string, SourceCoverage>;

/// Adds a run's counts to those of the probes; `counts` has one per counter of `source`.
void add_run(std::vector<std::uint64_t>& counts, const DumpedSource& source);

/// Adds an object to the coverage: for each line the largest count of its probes in each function,
/// for each function the count of its first probe. Left out are the paths whose place in `shown` is
/// false. `counts` has a value for each probe of the map.
void add_object(Coverage& coverage, const ProbeMap& map, const std::vector<std::uint64_t>& counts,
                const std::vector<bool>& shown);

/// What is hit of the lines and functions.
struct Rates {
    Rate lines;
    Rate functions;
};

/// The rates of one source.
Rates rates_of(const SourceCoverage& source);

/// The rates of all sources together.
Rates rates_of(const Coverage& coverage);
