// The coverage of a project: what the sources' lines, functions, branches and conditions count over
// all runs and all objects.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

/// Counts stay at this value when a sum would be larger: readers of reports take signed numbers.
constexpr std::uint64_t MAX_COUNT = INT64_MAX;

/// The sum of two counts.
constexpr std::uint64_t sum_of_counts(std::uint64_t a, std::uint64_t b)
{
    return b > MAX_COUNT || a > MAX_COUNT - b ? MAX_COUNT : a + b;
}

/// The counters of an object, as they lie in its array.
using Counters = std::vector<std::uint64_t>;

/// Adds a run's counters to the sum, which grows to their number. The last `or_words` join by "or".
void join_counters(Counters& sum, const Counters& run, std::size_t or_words);

/// What a report shows; each has what stands before it too. Lines bring functions along.
enum class Counting { lines, branches, conditions };

/// How many of something were hit, of how many.
struct Rate {
    std::size_t hit = 0;
    std::size_t total = 0;

    void add(std::uint64_t count)
    {
        hit += count > 0 ? 1 : 0;
        ++total;
    }

    void add(const Rate& other)
    {
        hit += other.hit;
        total += other.total;
    }
};

/// A function of a source: its first line, and how often it was called.
struct FunctionCoverage {
    std::uint32_t line = 0;
    std::uint64_t count = 0;
};

/// A branch that begins in a line, and how often it was taken.
struct Branch {
    std::uint64_t count = 0;
    bool is_throw = false;
    bool is_fallthrough = false;
};

/// A decision of a line: of each of its terms, whether it alone made it come out true and false.
struct Condition {
    std::vector<std::pair<bool, bool>> terms; ///< true, false
};

/// What a function does in a line that has branches or conditions.
struct LineBlock {
    std::uint64_t count = 0; ///< of the line in that function
    std::vector<Branch> branches;
    std::vector<Condition> conditions;
};

/// The coverage of a source or header.
struct SourceCoverage {
    std::map<std::uint32_t, std::uint64_t> lines;      ///< counts by line
    std::map<std::string, FunctionCoverage> functions; ///< by assembler name
    /// By line and by the assembler name of the function: each instance of a template has its own.
    std::map<std::uint32_t, std::map<std::string, LineBlock>> blocks;
};

/// The sources and headers of a project, by absolute path.
using Coverage = std::map<std::string, SourceCoverage>;

/// Adds to the block what another object, or another part of one, has of the same function and
/// line: counts add up, outcomes that either has are there. Where one has more, those stand as they
/// are.
void add_block(LineBlock& sum, const LineBlock& block);

/// Adds the same source of another object.
void add_source(SourceCoverage& sum, const SourceCoverage& source);

/// What is hit, by kind.
struct Rates {
    Rate lines;
    Rate functions;
    Rate branches;
    Rate conditions; ///< outcomes: two for each term
};

/// A rate, what it is called in reports, and the least counting that shows it.
struct RateName {
    Rate Rates::*rate;
    const char* name;
    Counting counting;
    bool is_optional; ///< not shown when there are none
};

/// All rates, in the order in which they are shown.
constexpr RateName RATE_NAMES[] = {
    {&Rates::lines, "lines", Counting::lines, false},
    {&Rates::functions, "functions", Counting::lines, false},
    {&Rates::branches, "branches", Counting::branches, false},
    {&Rates::conditions, "conditions", Counting::conditions, true},
};

/// True for a rate that a report of this counting shows; `rates` are those of the whole report.
constexpr bool is_shown(const RateName& name, const Rates& rates, Counting counting)
{
    return name.counting <= counting && (!name.is_optional || (rates.*name.rate).total > 0);
}

/// The outcomes of a condition.
Rate rate_of(const Condition& condition);

/// The rates of one source.
Rates rates_of(const SourceCoverage& source);

/// The rates of all sources together.
Rates rates_of(const Coverage& coverage);
