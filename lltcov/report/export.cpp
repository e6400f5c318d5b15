// The report is made even where something had to be left out; the exit status then says so.
#include "commonfunc/file_io.h"
#include "commonfunc/message.h"
#include "lltcov/common/command_line.h"
#include "lltcov/common/commands.h"
#include "lltcov/common/console.h"
#include "lltcov/report/coverage.h"
#include "lltcov/report/data_files.h"
#include "lltcov/report/project_data.h"
#include "lltcov/report/report_formats.h"
#include "lltcov/report/report_text.h"
#include "lltcov/report/shown_sources.h"

#include <cstdio>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace
{

struct Format {
    const char* option;
    std::string (*text)(const Report& report); ///< null where no text is made
    bool has_tests;                            ///< shows the tests one by one
};

constexpr Format FORMATS[] = {{"--lcov", as_lcov, true},
                              {"--json", as_json, false},
                              {"--cobertura", as_cobertura, false},
                              {"--gcda", nullptr, false}};

const Format& chosen_format(const CommandLine& line)
{
    const Format* chosen = nullptr;
    for (const Format& format : FORMATS) {
        if (line.has(format.option)) {
            if (chosen != nullptr) {
                throw UsageError("choose one format");
            }
            chosen = &format;
        }
    }
    if (chosen == nullptr) {
        throw UsageError("choose a format");
    }
    return *chosen;
}

std::string of(const Rate& rate)
{
    return std::to_string(rate.hit) + " of " + std::to_string(rate.total) + " ";
}

std::string summary(const Report& report)
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

Report report_of(const ProjectData& data, const Format& format, Counting counting,
                 Findings& findings)
{
    CoverageMaker maker(data, counting, findings);
    const std::vector<std::size_t> all = all_objects(data);
    Report report{data.directory, counting, maker.coverage_of(all), {}};
    if (format.has_tests && !data.tests.empty()) {
        report.tests.emplace_back("", maker.coverage_of_test("", all));
        for (const std::string& test : data.tests) {
            report.tests.emplace_back(test, maker.coverage_of_test(test, all));
        }
    }
    return report;
}

bool write_report(const CommandLine& line, const std::string& text)
{
    const std::string file = line.value("-o");
    if (!file.empty() && file != "-") {
        return replace_file(file, text) == Writing::done;
    }
    std::fwrite(text.data(), 1, text.size(), stdout);
    return finish_output();
}

} // namespace

int run_export(const Arguments& arguments)
{
    const CommandLine line(arguments, {"--lcov", "--json", "--cobertura"},
                           {"-o", "--gcda", "--project"});
    line.refuse_operands(" The report's file follows -o");
    const Format& format = chosen_format(line);
    const Counting counting = wanted_counting();
    Findings findings;
    const ProjectData data = read_project_data(line, findings);
    if (data.modules.empty()) {
        findings.print();
        return 1;
    }
    if (format.text == nullptr) {
        write_data_files(data, line.value(format.option), findings);
        findings.print();
        return findings.has_problems() ? 1 : 0;
    }
    const Report report = report_of(data, format, counting, findings);
    findings.print();
    const bool is_written = write_report(line, format.text(report));
    if (is_written && line.has("-o")) {
        warn("%s: %s", line.value("-o").c_str(), summary(report).c_str());
    }
    return is_written && !findings.has_problems() ? 0 : 1;
}
