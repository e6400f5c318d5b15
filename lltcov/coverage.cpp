// A line of one function runs if any of its pieces does, so that its largest probe counts. Another
// function that holds the line, an instance of a template, the caller of inlined code, or the same
// function of another object, has a copy of its own, whose count is added.
#include "lltcov/coverage.h"

#include <algorithm>

void add_run(std::vector<std::uint64_t>& counts, const DumpedSource& source)
{
    auto place = counts.begin();
    for (const std::uint64_t count : source.counters) {
        *place = sum_of_counts(*place, count);
        ++place;
    }
}

void add_object(Coverage& coverage, const ProbeMap& map, const std::vector<std::uint64_t>& counts,
                const std::vector<bool>& shown)
{
    std::vector<SourceCoverage*> sources; // by path; null where left out
    for (std::size_t path = 0; path < map.paths.size(); ++path) {
        sources.push_back(shown[path] ? &coverage[map.paths[path]] : nullptr);
    }
    const auto end = map.lines.end();
    for (auto at = map.lines.begin(); at != end;) {
        const MappedLine& first = *at;
        std::uint64_t largest = 0;
        for (; at != end && at->path == first.path && at->line == first.line &&
               at->function == first.function;
             ++at) {
            largest = std::max(largest, counts[at->probe]);
        }
        if (sources[first.path] != nullptr) {
            std::uint64_t& sum = sources[first.path]->lines[first.line];
            sum = sum_of_counts(sum, largest);
        }
    }
    for (const MappedFunction& mapped : map.functions) {
        if (sources[mapped.path] != nullptr) {
            FunctionCoverage& function = sources[mapped.path]->functions[mapped.symbol];
            function.line = function.line == 0 ? mapped.line : std::min(function.line, mapped.line);
            function.count =
                sum_of_counts(function.count, mapped.has_probe ? counts[mapped.probe] : 0);
        }
    }
}

Rates rates_of(const SourceCoverage& source)
{
    Rates rates;
    for (const auto& line : source.lines) {
        rates.lines.add(line.second);
    }
    for (const auto& function : source.functions) {
        rates.functions.add(function.second.count);
    }
    return rates;
}

Rates rates_of(const Coverage& coverage)
{
    Rates sum;
    for (const auto& source : coverage) {
        const Rates rates = rates_of(source.second);
        sum.lines.hit += rates.lines.hit;
        sum.lines.total += rates.lines.total;
        sum.functions.hit += rates.functions.hit;
        sum.functions.total += rates.functions.total;
    }
    return sum;
}
