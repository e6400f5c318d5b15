// The report is made even where something had to be left out; the exit status then says so.
#include "lltcov/commands.h"

#include "commonfunc/Caddis_func.h"
#include "lltcov/command_line.h"
#include "lltcov/console.h"
#include "lltcov/project_data.h"
#include "lltcov/report_formats.h"
#include "lltcov/shown_sources.h"

#include <cstdio>

namespace
{

struct Format {
    const char* option;
    std::string (*text)(const Report& report);
};

constexpr Format FORMATS[] = {
    {"--lcov", as_lcov}, {"--json", as_json}, {"--cobertura", as_cobertura}};

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

std::string summary(const Coverage& coverage)
{
    const Rates rates = rates_of(coverage);
    return std::to_string(rates.lines.hit) + " of " + std::to_string(rates.lines.total) +
           " lines hit (" + percent(rates.lines) + " %), " + std::to_string(rates.functions.hit) +
           " of " + std::to_string(rates.functions.total) + " functions, in " +
           std::to_string(coverage.size()) + " sources";
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
    const CommandLine line(arguments, {"--lcov", "--json", "--cobertura", "--include-system"},
                           {"-o", "--project"});
    line.refuse_operands(" The report's file goes behind -o");
    const Format& format = chosen_format(line);
    Findings findings;
    const ProjectData data = read_project_data(line, findings);
    if (data.modules.empty()) {
        findings.print();
        return 1;
    }
    const auto headers =
        line.has("--include-system") ? SystemHeaders::shown : SystemHeaders::left_out;
    CoverageMaker maker(data, headers, findings);
    const Report report{data.root, maker.coverage_of(all_objects(data))};
    findings.print();
    const bool is_written = write_report(line, format.text(report));
    if (is_written && line.has("-o")) {
        warn("%s: %s", line.value("-o").c_str(), summary(report.coverage).c_str());
    }
    return is_written && !findings.has_problems() ? 0 : 1;
}
