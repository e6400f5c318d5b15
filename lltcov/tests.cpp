// Which test reaches what, of the runs that were made with a test's name in "LLTCOV_TEST".
#include "lltcov/commands.h"

#include "commonfunc/Caddis_func.h"
#include "lltcov/command_line.h"
#include "lltcov/console.h"
#include "lltcov/project_data.h"
#include "lltcov/shown_sources.h"

#include <cstdio>

namespace
{

/// A line of a source.
using Line = std::pair<std::string, std::uint32_t>;

/// The operand FILE:LINE. A file is looked for from here, then from the project's folder.
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
    const auto count = source == coverage.end() ? decltype(source->second.lines.begin()){}
                                                : source->second.lines.find(line.second);
    return source == coverage.end() || count == source->second.lines.end() ? 0 : count->second;
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
    for (const std::string& test : data.tests) {
        const std::uint64_t count = count_of(maker.coverage_of_test(test, objects), line);
        if (count > 0) {
            table.add({test, std::to_string(count)});
        }
    }
    table.print();
    return 0;
}

/// Tests that alone reach lines, with the number of those.
int print_unique(const ProjectData& data, CoverageMaker& maker)
{
    std::map<Line, const std::string*> only_test; // null where there are several
    for (const std::string& test : data.tests) {
        for (const auto& [path, source] : maker.coverage_of_test(test, all_objects(data))) {
            for (const auto& [line, count] : source.lines) {
                if (count > 0) {
                    const auto [place, is_new] = only_test.emplace(Line(path, line), &test);
                    place->second = is_new ? &test : nullptr;
                }
            }
        }
    }
    std::map<std::string, std::size_t> lines;
    for (const auto& [line, test] : only_test) {
        if (test != nullptr) {
            ++lines[*test];
        }
    }
    Table table({"TEST", ">LINES"});
    for (const auto& [test, number] : lines) {
        table.add({test, std::to_string(number)});
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
    const CommandLine line(arguments, {"--unique"}, {"--project"});
    if (line.operands().size() > (line.has("--unique") ? 0U : 1U)) {
        throw UsageError("choose one line, or --unique");
    }
    Findings findings;
    const ProjectData data = read_project_data(line, findings);
    if (data.tests.empty()) {
        findings.print();
        warn("no run of '%s' has the name of a test; run each test with LLTCOV_TEST=NAME in its "
             "environment",
             data.root.c_str());
        return 1;
    }
    CoverageMaker maker(data, Counting::lines, findings);
    const int status =
        !line.operands().empty()
            ? print_tests_of_line(data, maker, line_of(line.operands()[0], data.root))
        : line.has("--unique") ? print_unique(data, maker)
                               : print_all(data, maker);
    const bool is_written = finish_output();
    findings.print();
    return is_written && !findings.has_problems() ? status : 1;
}
