// Which test reaches what, of the runs that were made with a test's name in "LLTCOV_TEST".
#include "commonfunc/file_ops.h"
#include "commonfunc/message.h"
#include "commonfunc/path_name.h"
#include "commonfunc/text.h"
#include "lltcov/common/command_line.h"
#include "lltcov/common/commands.h"
#include "lltcov/common/console.h"
#include "lltcov/common/project.h"
#include "lltcov/report/coverage.h"
#include "lltcov/report/project_data.h"
#include "lltcov/report/report_text.h"
#include "lltcov/report/shown_sources.h"
#include "lltcov/report/whole_project.h"

#include <cstdint>
#include <cstdio>
#include <map>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace
{

/// A line of a source.
using Line = std::pair<std::string, std::uint32_t>;

/// The operand FILE:LINE. A file is looked for from here, then from the project's directory.
Line line_of(const std::string& operand, const std::string& root)
{
    const std::size_t colon = operand.rfind(':');
    const int number = colon == operand.npos ? 0 : to_int(operand.c_str() + colon + 1);
    const std::string file = operand.substr(0, colon);
    if (number <= 0 || file.empty()) {
        throw UsageError("'" + operand + "' is no FILE:LINE");
    }
    const bool is_here = file[0] == '/' || QMRFileExists(file.c_str()) != 0;
    return {absolute_path(is_here ? file : root + "/" + file), static_cast<std::uint32_t>(number)};
}

std::uint64_t count_of(const Coverage& coverage, const Line& line)
{
    const auto source = coverage.find(line.first);
    if (source == coverage.end()) {
        return 0;
    }
    const auto count = source->second.lines.find(line.second);
    return count == source->second.lines.end() ? 0 : count->second;
}

int print_tests_of_line(const ProjectData& data, CoverageMaker& maker, const Line& line)
{
    const std::vector<std::size_t> objects = maker.objects_with(line.first, line.second);
    if (objects.empty()) {
        warn("'%s:%u' is no line that is counted; look at a report for those", line.first.c_str(),
             line.second);
        return 1;
    }
    Table table({"TEST", ">COUNT"});
    bool is_reached = false;
    for (const std::string& test : data.tests) {
        const std::uint64_t count = count_of(maker.coverage_of_test(test, objects), line);
        if (count > 0) {
            table.add({test, std::to_string(count)});
            is_reached = true;
        }
    }
    is_reached ? table.print() : warn("no test reaches '%s:%u'", line.first.c_str(), line.second);
    return 0;
}

/// What a test may reach: a line, or one of its branches.
struct Place {
    std::string path;
    std::uint32_t line;
    std::string function; ///< of a branch: instances of a template have branches of their own
    int branch;           ///< -1 for the line itself

    bool operator<(const Place& other) const
    {
        return std::tie(path, line, function, branch) <
               std::tie(other.path, other.line, other.function, other.branch);
    }
};

/// Calls the function with everything that is reached.
template <typename Visit> void visit_reached(const Coverage& coverage, Visit visit)
{
    for (const auto& [path, source] : coverage) {
        for (const auto& [line, count] : source.lines) {
            if (count > 0) {
                visit(Place{path, line, "", -1});
            }
        }
        for (const auto& [line, blocks] : source.blocks) {
            for (const auto& [function, block] : blocks) {
                int number = 0;
                for (const Branch& branch : block.branches) {
                    if (branch.count > 0) {
                        visit(Place{path, line, function, number});
                    }
                    ++number;
                }
            }
        }
    }
}

/// Tests that alone reach something, with the numbers of lines and branches.
int print_unique(const ProjectData& data, CoverageMaker& maker)
{
    std::map<Place, const std::string*> only_test; // null where there are several
    for (const std::string& test : data.tests) {
        visit_reached(maker.coverage_of_test(test, all_objects(data)), [&](const Place& reached) {
            const auto [place, is_new] = only_test.emplace(reached, &test);
            place->second = is_new ? &test : nullptr;
        });
    }
    std::map<std::string, std::pair<std::size_t, std::size_t>> numbers; // lines, branches
    for (const auto& [place, test] : only_test) {
        if (test != nullptr) {
            ++(place.branch < 0 ? numbers[*test].first : numbers[*test].second);
        }
    }
    Table table({"TEST", ">LINES", ">BRANCHES"});
    for (const auto& [test, number] : numbers) {
        table.add({test, std::to_string(number.first), std::to_string(number.second)});
    }
    table.print();
    return 0;
}

/// All tests, with their part of the project's lines.
int print_all(const ProjectData& data, CoverageMaker& maker)
{
    const std::vector<std::size_t> all = all_objects(data);
    const std::size_t total = rates_of(maker.coverage_of(all)).lines.total;
    Table table({"TEST", ">LINES", ">%"});
    for (const std::string& test : data.tests) {
        const Rate rate = {rates_of(maker.coverage_of_test(test, all)).lines.hit, total};
        table.add({test, std::to_string(rate.hit) + "/" + std::to_string(total), percent(rate)});
    }
    table.print();
    return 0;
}

} // namespace

int run_tests(const Arguments& arguments)
{
    const CommandLine line(arguments, {"--unique"}, {"--map", "--project"});
    if (line.operands().size() > (line.has("--unique") ? 0U : 1U)) {
        throw UsageError("choose one line, or --unique");
    }
    const bool has_line = !line.operands().empty();
    const Line wanted =
        has_line ? line_of(line.operands()[0], project_directory(project_root(line))) : Line();
    Findings findings;
    const ProjectData data = read_project_data(line, findings);
    if (data.tests.empty()) {
        findings.print();
        warn(
            "no run of '%s' has the name of a test; run each test with LLTCOV_TEST=NAME in its environment",
            data.directory.c_str());
        return 1;
    }
    const Counting counting = line.has("--unique") ? Counting::branches : Counting::lines;
    CoverageMaker maker(data, counting, findings);
    const int status = has_line               ? print_tests_of_line(data, maker, wanted)
                       : line.has("--unique") ? print_unique(data, maker)
                                              : print_all(data, maker);
    const bool is_written = finish_output();
    findings.print();
    return is_written && !findings.has_problems() ? status : 1;
}
