// A report is made even where something had to be left out; the exit status then says so. That
// nothing ran is most often a build or a test run that went elsewhere.
#include "lltcov/report/project_report.h"

#include "lltcov/common/project.h"
#include "lltcov/report/data_files.h"
#include "lltcov/report/report_text.h"
#include "lltcov/report/shown_sources.h"
#include "lltcov/report/whole_project.h"

#include <algorithm>
#include <cstddef>
#include <set>
#include <utility>

namespace
{

constexpr const char* ALLOW_EMPTY = "--allow-empty";

std::string of(const Rate& rate)
{
    return std::to_string(rate.hit) + " of " + std::to_string(rate.total) + " ";
}

} // namespace

std::vector<std::string> with_report_flags(std::vector<std::string> flags)
{
    flags.emplace_back(ALLOW_EMPTY);
    return with_selection_flags(std::move(flags));
}

std::string summary_of(const Report& report)
{
    const Rates rates = rates_of(report.coverage);
    std::string text = of(rates.lines) + "lines hit (" + percent(rates.lines) + " %)";
    for (const RateName& name : RATE_NAMES) {
        if (name.rate != &Rates::lines && is_shown(name, rates, report.counting)) {
            text += ", " + of(rates.*name.rate) + name.name;
        }
    }
    return text + ", in " + std::to_string(report.coverage.size()) + " sources";
}

ProjectReport::ProjectReport(const CommandLine& line)
    : report_{"", wanted_counting(), {}, {}},
      selection_(line, project_directory(project_root(line))),
      data_(read_project_data(line, findings_)), may_be_empty_(line.has(ALLOW_EMPTY))
{
    report_.root = data_.directory;
}

bool ProjectReport::make(Tests tests)
{
    if (data_.modules.empty()) {
        findings_.print();
        return false;
    }
    CoverageMaker maker(data_, report_.counting, findings_, selection_);
    const std::vector<std::size_t> all = all_objects(data_);
    report_.coverage = maker.coverage_of(all);
    if (tests == Tests::each && !data_.tests.empty()) {
        report_.tests.emplace_back("", maker.coverage_of_test("", all));
        for (const std::string& test : data_.tests) {
            report_.tests.emplace_back(test, maker.coverage_of_test(test, all));
        }
    }
    findings_.print();
    return true;
}

bool ProjectReport::write_gcda(const std::string& directory)
{
    if (!data_.modules.empty()) {
        write_data_files(data_, directory, findings_);
    }
    findings_.print();
    return !data_.modules.empty() && has_run() && !findings_.has_problems();
}

bool ProjectReport::is_satisfied(const Coverage& part) const
{
    const bool is_good = selection_.has_selected(report_.coverage) && selection_.is_reached(part);
    return is_good && has_run() && !findings_.has_problems();
}

bool ProjectReport::has_run() const
{
    return may_be_empty_ || std::any_of(data_.modules.begin(), data_.modules.end(),
                                        [](const ModuleData& module) { return module.runs > 0; });
}
