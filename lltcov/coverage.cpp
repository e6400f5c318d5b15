// A line of one object runs if any of its pieces does, so that its largest probe counts; another
// object that includes the line has a copy of its own, whose count is added.
#include "lltcov/coverage.h"

#include <algorithm>

void add_run(std::vector<std::uint64_t>& counts, const DumpedSource& source)
{
    auto place = counts.begin();
    for (const CountRun& run : source.runs) {
        for (const auto end = place + run.times; place != end; ++place) {
            *place = sum_of_counts(*place, run.count);
        }
    }
}

void add_object(Coverage& coverage, const ProbeMap& map, const std::vector<std::uint64_t>& counts,
                const std::vector<bool>& shown)
{
    std::vector<std::map<std::uint32_t, std::uint64_t>> lines(map.paths.size());
    for (const MappedLine& mapped : map.lines) {
        if (shown[mapped.path]) {
            std::uint64_t& largest = lines[mapped.path][mapped.line];
            largest = std::max(largest, counts[mapped.probe]);
        }
    }
    for (std::size_t path = 0; path < lines.size(); ++path) {
        if (lines[path].empty()) {
            continue;
        }
        SourceCoverage& source = coverage[map.paths[path]];
        for (const auto& [line, count] : lines[path]) {
            std::uint64_t& sum = source.lines[line];
            sum = sum_of_counts(sum, count);
        }
    }
    for (const MappedFunction& mapped : map.functions) {
        if (shown[mapped.path]) {
            FunctionCoverage& function = coverage[map.paths[mapped.path]].functions[mapped.symbol];
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
