// Function names stay as the assembler has them: they are unique, hold no comma, which would end
// the name there, and "genhtml --demangle-cpp" makes them readable.
#include "lltcov/report/coverage.h"
#include "lltcov/report/report_formats.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace
{

std::string rate_lines(const char* found, const char* hit, const Rate& rate)
{
    return std::string(found) + std::to_string(rate.total) + "\n" + hit + std::to_string(rate.hit) +
           "\n";
}

/// A test's name of letters, digits and "_": readers of tracefiles accept no others.
std::string plain_name(std::string name)
{
    for (char& c : name) {
        c = std::isalnum(static_cast<unsigned char>(c)) != 0 ? c : '_';
    }
    return name;
}

std::string function_lines(const SourceCoverage& source)
{
    std::string out;
    for (const auto& [name, function] : source.functions) {
        out += "FN:" + std::to_string(function.line) + "," + name + "\n";
    }
    for (const auto& [name, function] : source.functions) {
        out += "FNDA:" + std::to_string(function.count) + "," + name + "\n";
    }
    return out;
}

/// BRDA:LINE,BLOCK,BRANCH,COUNT; "-" is the count where the line did not run at all.
std::string branch_lines(const SourceCoverage& source)
{
    std::string out;
    for (const auto& [line, blocks] : source.blocks) {
        std::size_t number = 0;
        for (const auto& [name, block] : blocks) {
            const std::string start =
                "BRDA:" + std::to_string(line) + "," + std::to_string(number) + ",";
            for (std::size_t i = 0; i < block.branches.size(); ++i) {
                const std::uint64_t count = block.branches[i].count;
                out += start + std::to_string(i) + "," +
                       (block.count == 0 && count == 0 ? "-" : std::to_string(count)) + "\n";
            }
            number += block.branches.empty() ? 0 : 1;
        }
    }
    return out;
}

/// MCDC:LINE,TERMS,SENSE,TAKEN,INDEX,EXPRESSION for both senses of each term. Readers know a group
/// by line and number of terms, so that all decisions of a line are one group.
std::string condition_lines(const SourceCoverage& source)
{
    std::string out;
    for (const auto& [line, blocks] : source.blocks) {
        std::vector<std::pair<bool, bool>> terms;
        for (const auto& block : blocks) {
            for (const Condition& condition : block.second.conditions) {
                terms.insert(terms.end(), condition.terms.begin(), condition.terms.end());
            }
        }
        const std::string start =
            "MCDC:" + std::to_string(line) + "," + std::to_string(terms.size()) + ",";
        for (std::size_t i = 0; i < terms.size(); ++i) {
            const std::string end = "," + std::to_string(i) + "," + std::to_string(i) + "\n";
            out += start + "t," + (terms[i].first ? "1" : "0") + end;
            out += start + "f," + (terms[i].second ? "1" : "0") + end;
        }
    }
    return out;
}

std::string section(const std::string& test, const std::string& path, const SourceCoverage& source)
{
    const Rates rates = rates_of(source);
    std::string out = "TN:" + test + "\nSF:" + path + "\n" + function_lines(source) +
                      rate_lines("FNF:", "FNH:", rates.functions);
    if (rates.branches.total > 0) {
        out += branch_lines(source) + rate_lines("BRF:", "BRH:", rates.branches);
    }
    if (rates.conditions.total > 0) {
        out += condition_lines(source) + rate_lines("MCF:", "MCH:", rates.conditions);
    }
    for (const auto& [line, count] : source.lines) {
        out += "DA:" + std::to_string(line) + "," + std::to_string(count) + "\n";
    }
    return out + rate_lines("LF:", "LH:", rates.lines) + "end_of_record\n";
}

/// What a section has of a test. Blocks of functions that the test did not load have their numbers
/// too, since readers join sections by the numbers. Conditions are those of the whole, in one
/// section: readers add the numbers of outcomes up, where several have them.
SourceCoverage numbered(SourceCoverage source, const SourceCoverage& whole, bool has_conditions)
{
    for (const auto& [line, blocks] : whole.blocks) {
        if (source.lines.count(line) == 0) {
            continue;
        }
        for (const auto& [name, block] : blocks) {
            LineBlock& own = source.blocks[line][name];
            own.branches.resize(std::max(own.branches.size(), block.branches.size()));
            own.conditions = has_conditions ? block.conditions : std::vector<Condition>();
        }
    }
    return source;
}

} // namespace

std::string as_lcov(const Report& report)
{
    std::string out;
    if (report.tests.empty()) {
        for (const auto& [path, source] : report.coverage) {
            out += section("", path, source);
        }
    }
    for (const auto& [test, coverage] : report.tests) {
        const bool is_first = test == report.tests[0].first;
        for (const auto& [path, source] : coverage) {
            const auto whole = report.coverage.find(path);
            out +=
                section(plain_name(test), path,
                        whole == report.coverage.end() ? source
                                                       : numbered(source, whole->second, is_first));
        }
    }
    return out;
}
