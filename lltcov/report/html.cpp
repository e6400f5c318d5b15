// Pages are drawn by genhtml, which every system with lcov has; options tell it what it cannot
// know, such as how names of functions are written.
#include "commonfunc/file_tree.h"
#include "commonfunc/message.h"
#include "commonfunc/path_name.h"
#include "commonfunc/path_search.h"
#include "commonfunc/text.h"
#include "lltcov/common/command_line.h"
#include "lltcov/common/commands.h"
#include "lltcov/common/console.h"
#include "lltcov/common/project.h"
#include "lltcov/report/child_process.h"
#include "lltcov/report/coverage.h"
#include "lltcov/report/project_report.h"
#include "lltcov/report/report_formats.h"
#include "lltcov/report/selection.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace
{

constexpr const char* TRACEFILE = "report.info";

/// The directory of the pages, absolute: of "-o", else "html" beside what the build has left,
/// emptied, as sources may be gone since its pages were drawn.
std::string directory_of(const CommandLine& line)
{
    const std::string named = line.value("-o");
    const std::string directory = named.empty() ? kept_place(project_root(line), "html") : named;
    if (named.empty()) {
        remove_tree(directory);
    }
    std::filesystem::create_directories(directory);
    return absolute_path(directory);
}

/// True when a name is one of C++, as the assembler has it.
bool has_mangled_names(const Coverage& coverage)
{
    return std::any_of(coverage.begin(), coverage.end(), [](const auto& source) {
        const auto& functions = source.second.functions;
        return std::any_of(functions.begin(), functions.end(),
                           [](const auto& function) { return begins_with(function.first, "_Z"); });
    });
}

/// The call that draws the report's pages.
std::vector<std::string> drawing_of(const Report& report, const std::string& directory)
{
    std::vector<std::string> words = {"genhtml",  "--quiet",   "--title",  base_name(report.root),
                                      "--prefix", report.root, "--legend", "-o",
                                      directory};
    if (has_mangled_names(report.coverage)) { // it starts a program for each source then
        words.emplace_back("--demangle-cpp");
    }
    if (report.counting >= Counting::branches) {
        words.emplace_back("--branch-coverage");
    }
    if (rates_of(report.coverage).conditions.total > 0) { // only newer ones know it
        words.emplace_back("--mcdc-coverage");
    }
    words.emplace_back(TRACEFILE);
    return words;
}

/// False with a message when it could not draw.
bool draw(const Report& report, const std::string& directory)
{
    const TemporaryDirectory temporary;
    temporary.write(TRACEFILE, as_lcov(report));
    const int status =
        wait_for_program(start_program(drawing_of(report, directory), temporary, "genhtml"));
    if (status != 0) {
        std::fputs(temporary.read("genhtml.err").c_str(), stderr);
        warn("genhtml ended with status %d: no pages in '%s'; what it says is above", status,
             directory.c_str());
    }
    return status == 0;
}

} // namespace

int run_report(const Arguments& arguments)
{
    const CommandLine line(arguments, with_report_flags({}),
                           with_selection_options({"-o", "--map", "--project"}));
    line.refuse_operands(" The directory of the pages follows -o");
    if (program_on_path("genhtml").empty()) {
        warn("there is no genhtml on PATH; install the package lcov, or use lltcov export");
        return 1;
    }
    ProjectReport made(line);
    if (!made.make(Tests::each) || made.report().coverage.empty()) {
        made.is_satisfied();
        warn("there is no source to draw pages of");
        return 1;
    }
    const std::string directory = directory_of(line);
    const bool is_drawn = draw(made.report(), directory);
    if (is_drawn) {
        std::printf("%s\n%s/index.html\n", summary_of(made.report()).c_str(), directory.c_str());
    }
    const bool is_written = finish_output();
    return made.is_satisfied() && is_drawn && is_written ? 0 : 1;
}
