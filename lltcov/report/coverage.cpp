// A function that several objects hold, as inline functions and templates are, has the same lines
// and branches in each, so that they add up one by one.
#include "lltcov/report/coverage.h"

#include <algorithm>

namespace
{

/// Joins the elements of two lists by their places.
template <typename Element, typename Join>
void join_lists(std::vector<Element>& sum, const std::vector<Element>& list, Join join)
{
    const std::size_t common = std::min(sum.size(), list.size());
    for (std::size_t i = 0; i < common; ++i) {
        join(sum[i], list[i]);
    }
    sum.insert(sum.end(), list.begin() + static_cast<std::ptrdiff_t>(common), list.end());
}

void add_branch(Branch& sum, const Branch& branch)
{
    sum.count = sum_of_counts(sum.count, branch.count);
}

void add_condition(Condition& sum, const Condition& condition)
{
    join_lists(sum.terms, condition.terms, [](auto& a, const auto& b) {
        a.first = a.first || b.first;
        a.second = a.second || b.second;
    });
}

} // namespace

void join_counters(Counters& sum, const Counters& run, std::size_t or_words)
{
    sum.resize(std::max(sum.size(), run.size()));
    for (std::size_t i = 0; i < run.size(); ++i) {
        sum[i] = i + or_words < run.size() ? sum_of_counts(sum[i], run[i]) : sum[i] | run[i];
    }
}

void add_block(LineBlock& sum, const LineBlock& block)
{
    sum.count = sum_of_counts(sum.count, block.count);
    join_lists(sum.branches, block.branches, add_branch);
    join_lists(sum.conditions, block.conditions, add_condition);
}

void add_source(SourceCoverage& sum, const SourceCoverage& source)
{
    for (const auto& [line, count] : source.lines) {
        std::uint64_t& total = sum.lines[line];
        total = sum_of_counts(total, count);
    }
    for (const auto& [name, function] : source.functions) {
        FunctionCoverage& total = sum.functions[name];
        total.line = total.line == 0 ? function.line : std::min(total.line, function.line);
        total.count = sum_of_counts(total.count, function.count);
    }
    for (const auto& [line, blocks] : source.blocks) {
        auto& of_line = sum.blocks[line];
        for (const auto& [name, block] : blocks) {
            add_block(of_line[name], block);
        }
    }
}

Rate rate_of(const Condition& condition)
{
    Rate rate;
    for (const auto& [is_true, is_false] : condition.terms) {
        rate.add(is_true ? 1 : 0);
        rate.add(is_false ? 1 : 0);
    }
    return rate;
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
    for (const auto& line : source.blocks) {
        for (const auto& block : line.second) {
            for (const Branch& branch : block.second.branches) {
                rates.branches.add(branch.count);
            }
            for (const Condition& condition : block.second.conditions) {
                rates.conditions.add(rate_of(condition));
            }
        }
    }
    return rates;
}

Rates rates_of(const Coverage& coverage)
{
    Rates sum;
    for (const auto& source : coverage) {
        const Rates rates = rates_of(source.second);
        for (const RateName& name : RATE_NAMES) {
            (sum.*name.rate).add(rates.*name.rate);
        }
    }
    return sum;
}
