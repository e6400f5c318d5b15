// Coverage of a change: the figure that a review wants. Git makes the diff against a revision; any
// other diff is read from a file. A diff may name its files from another directory than the
// project's: leading directories are dropped until a source of the report fits.
#include "commonfunc/file_io.h"
#include "commonfunc/file_ops.h"
#include "commonfunc/message.h"
#include "commonfunc/path_name.h"
#include "commonfunc/path_search.h"
#include "lltcov/common/command_line.h"
#include "lltcov/common/commands.h"
#include "lltcov/common/console.h"
#include "lltcov/common/project.h"
#include "lltcov/report/changed_lines.h"
#include "lltcov/report/child_process.h"
#include "lltcov/report/coverage.h"
#include "lltcov/report/project_report.h"
#include "lltcov/report/report_formats.h"
#include "lltcov/report/report_text.h"
#include "lltcov/report/selection.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace
{

/// What a program prints; none after a message when it fails.
std::optional<std::string> output_of(const std::vector<std::string>& words)
{
    const TemporaryDirectory temporary;
    const int status = wait_for_program(start_program(words, temporary, "out"));
    if (status != 0) {
        std::fputs(temporary.read("out.err").c_str(), stderr);
        warn("%s ended with status %d; name a revision or a file with a diff", words[0].c_str(),
             status);
        return std::nullopt;
    }
    return temporary.read("out.out");
}

/// The changes since the base; their paths are below `directory`, or, where they may be longer,
/// below one above it.
struct Change {
    std::string directory;
    bool may_be_longer;
    ChangedLines lines;
};

std::optional<std::string> text_of(const std::string& file)
{
    std::string text;
    if (file == "-") {
        char piece[4096];
        for (std::size_t size = 1; size > 0; text.append(piece, size)) {
            size = std::fread(piece, 1, sizeof piece, stdin);
        }
        return text;
    }
    const Reading reading = read_whole_file(file, text);
    if (reading != Reading::done && reading != Reading::empty) {
        warn("cannot read '%s': %s", file.c_str(), why_not_read());
        return std::nullopt;
    }
    return text;
}

std::optional<Change> change_in(const std::string& file, const std::string& project)
{
    const auto read = text_of(file);
    if (!read) {
        return std::nullopt;
    }
    const std::string& text = *read;
    ChangedLines lines = changed_lines(text);
    if (lines.empty() && text.find("\n@@ ") == text.npos && !text.empty()) {
        warn("'%s' is no unified diff; name one, or a revision", file.c_str());
        return std::nullopt;
    }
    return Change{project, true, std::move(lines)};
}

std::optional<Change> change_since(const std::string& base, const std::string& project)
{
    std::error_code error;
    if (base == "-" || std::filesystem::is_regular_file(base, error)) {
        return change_in(base, project);
    }
    if (program_on_path("git").empty()) {
        warn("'%s' is no file, and there is no git on PATH to know it as a revision; install git",
             base.c_str());
        return std::nullopt;
    }
    if (base[0] == '-') {
        throw UsageError("'" + base + "' is neither a file nor a revision");
    }
    const auto top = output_of({"git", "-C", project, "rev-parse", "--show-toplevel"});
    const auto diff =
        !top ? top
             : output_of({"git", "-C", project, "-c", "core.quotePath=false", "diff", "--no-color",
                          "--no-ext-diff", "--no-relative", "--unified=0", "--src-prefix=a/",
                          "--dst-prefix=b/", base, "--"});
    if (!diff) {
        return std::nullopt;
    }
    return Change{top->substr(0, top->find('\n')), false, changed_lines(*diff)};
}

/// The source of the report that a path of the diff means; the end where there is none.
Coverage::const_iterator source_of(const Coverage& coverage, const Change& change, std::string path)
{
    auto source = coverage.find(path);
    while (source == coverage.end()) {
        const std::string named = absolute_path(change.directory + "/" + path);
        source = coverage.find(named);
        const std::size_t slash = path.find('/');
        if (slash == path.npos || !change.may_be_longer || QMRFileExists(named.c_str()) != 0) {
            break;
        }
        path.erase(0, slash + 1);
    }
    return source;
}

/// What is counted of the changed lines.
Coverage coverage_of(const Change& change, const Coverage& coverage)
{
    Coverage changed;
    for (const auto& [path, lines] : change.lines) {
        const auto source = source_of(coverage, change, path);
        if (source == coverage.end()) {
            continue;
        }
        for (const std::uint32_t line : lines) {
            const auto count = source->second.lines.find(line);
            const auto blocks = source->second.blocks.find(line);
            if (count != source->second.lines.end()) {
                changed[source->first].lines.insert(*count);
            }
            if (blocks != source->second.blocks.end()) {
                changed[source->first].blocks.insert(*blocks);
            }
        }
    }
    return changed;
}

/// "SOURCE:LINE: COUNT: TEXT" for each line.
void print_lines(const std::string& path, const std::string& shown, const SourceCoverage& source)
{
    std::string text;
    read_whole_file(path, text);
    std::uint32_t number = 1;
    std::size_t at = 0;
    for (const auto& [line, count] : source.lines) {
        for (; number < line && at < text.size(); ++number) {
            at = std::min(text.find('\n', at), text.size() - 1) + 1;
        }
        const std::string code = text.substr(at, text.find('\n', at) - at);
        std::printf("%s:%u: %s: %s\n", shown.c_str(), line,
                    count == 0 ? "not run" : std::to_string(count).c_str(), code.c_str());
    }
}

void print_rates(const Coverage& changed, const std::string& root)
{
    Table table({"SOURCE", ">CHANGED LINES HIT", ">%"});
    const auto add = [&](const std::string& name, const Rate& rate) {
        table.add(
            {name, std::to_string(rate.hit) + "/" + std::to_string(rate.total), percent(rate)});
    };
    for (const auto& [path, source] : changed) {
        add(shown_path(path, root), rates_of(source).lines);
    }
    add("total", rates_of(changed).lines);
    table.print();
}

} // namespace

int run_diff(const Arguments& arguments)
{
    const CommandLine line(arguments, with_report_flags({}),
                           with_selection_options({"--map", "--project"}));
    if (line.operands().size() != 1 || line.operands()[0].empty()) {
        throw UsageError("diff needs a revision or a file with a diff");
    }
    const auto change = change_since(line.operands()[0], project_directory(project_root(line)));
    if (!change) {
        return 1;
    }
    ProjectReport made(line);
    if (!made.make(Tests::together)) {
        return 1;
    }
    const Coverage changed = coverage_of(*change, made.report().coverage);
    for (const auto& [path, source] : changed) {
        print_lines(path, shown_path(path, made.report().root), source);
    }
    changed.empty() ? warn("no changed line is counted") : print_rates(changed, made.report().root);
    const bool is_written = finish_output();
    return made.is_satisfied(changed) && is_written ? 0 : 1;
}
