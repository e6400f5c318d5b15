// The report is made even where something had to be left out; the exit status then says so.
#include "commonfunc/file_io.h"
#include "commonfunc/message.h"
#include "lltcov/common/command_line.h"
#include "lltcov/common/commands.h"
#include "lltcov/common/console.h"
#include "lltcov/report/project_report.h"
#include "lltcov/report/report_formats.h"
#include "lltcov/report/selection.h"

#include <cstdio>
#include <string>

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
    const CommandLine line(arguments, with_report_flags({"--lcov", "--json", "--cobertura"}),
                           with_selection_options({"-o", "--gcda", "--map", "--project"}));
    line.refuse_operands(" The report's file follows -o");
    const Format& format = chosen_format(line);
    if (format.text == nullptr && (line.has("-o") || takes_selection(line))) {
        throw UsageError("--gcda writes the files of all objects: no -o, no selection");
    }
    ProjectReport made(line);
    if (format.text == nullptr) {
        return made.write_gcda(line.value(format.option)) ? 0 : 1;
    }
    if (!made.make(format.has_tests ? Tests::each : Tests::together)) {
        return 1;
    }
    const bool is_written = write_report(line, format.text(made.report()));
    if (is_written && line.has("-o")) {
        warn("%s: %s", line.value("-o").c_str(), summary_of(made.report()).c_str());
    }
    return made.is_satisfied() && is_written ? 0 : 1;
}
