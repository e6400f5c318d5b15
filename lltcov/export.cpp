// The report is made even where something had to be left out; then the exit status says so.
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
    std::string (*text)(const Coverage& coverage);
};

constexpr Format FORMATS[] = {{"--lcov", as_lcov}};

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

} // namespace

int run_export(const Arguments& arguments)
{
    const CommandLine line(arguments, {"--lcov", "--json", "--cobertura", "--include-system"},
                           {"-o", "--project"});
    const Format& format = chosen_format(line);
    Findings findings;
    const ProjectData data = read_project_data(line, findings);
    const auto system_headers =
        line.has("--include-system") ? SystemHeaders::shown : SystemHeaders::left_out;
    const Coverage coverage = CoverageMaker(data, system_headers, findings).coverage();
    findings.print();
    const std::string text = format.text(coverage);
    if (line.has("-o")) {
        return replace_file(line.value("-o"), text) == Writing::done && findings.empty() ? 0 : 1;
    }
    std::fwrite(text.data(), 1, text.size(), stdout);
    return findings.empty() ? 0 : 1;
}
