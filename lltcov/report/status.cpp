// A module's lines are those of its own objects; the total counts a source of several modules once.
// By file or directory, a source has the lines of all objects that hold it.
#include "contract/record.h"
#include "lltcov/common/command_line.h"
#include "lltcov/common/commands.h"
#include "lltcov/common/console.h"
#include "lltcov/common/project.h"
#include "lltcov/report/coverage.h"
#include "lltcov/report/project_data.h"
#include "lltcov/report/report_text.h"
#include "lltcov/report/selection.h"
#include "lltcov/report/shown_sources.h"
#include "lltcov/report/whole_project.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdio>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace
{

struct Row {
    std::string name;
    std::size_t sources = 0;
    std::size_t symbols = 0;
    Rates rates;
    std::uint64_t runs = 0;
    bool is_left_out = false; ///< a library of which nothing can run
    std::string built;        ///< YYYY-MM-DD hh:mm:ss
    std::string output;
};

/// "20261121090117" as "2026-11-21 09:01:17".
std::string readable_time(const std::string& digits)
{
    if (digits.size() != 14) {
        return digits;
    }
    return digits.substr(0, 4) + "-" + digits.substr(4, 2) + "-" + digits.substr(6, 2) + " " +
           digits.substr(8, 2) + ":" + digits.substr(10, 2) + ":" + digits.substr(12, 2);
}

std::size_t sources_of(const ProjectData& data, const std::vector<std::size_t>& objects)
{
    std::set<std::string> sources;
    for (const std::size_t object : objects) {
        sources.insert(data.objects[object].record.source);
    }
    return sources.size();
}

/// A row for each module, then the total, which is of `coverage`.
std::vector<Row> rows_of(const ProjectData& data, CoverageMaker& maker, const Coverage& coverage)
{
    Row total;
    total.name = "total";
    total.sources = sources_of(data, all_objects(data));
    total.symbols = data.objects.size();
    total.rates = rates_of(coverage);
    Progress progress("adding up modules", data.modules.size());
    std::vector<Row> rows;
    for (const ModuleData& module : data.modules) {
        rows.push_back({module.module.name, sources_of(data, module.objects), module.objects.size(),
                        rates_of(maker.coverage_of(module.objects)), module.runs,
                        is_left_out(data, module), readable_time(module.built), module.output});
        total.runs = sum_of_counts(total.runs, module.runs);
        progress.step();
    }
    rows.push_back(total);
    return rows;
}

/// "lines" as "LINES".
std::string title_of(const RateName& name)
{
    std::string title = name.name;
    std::transform(title.begin(), title.end(), title.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return title;
}

/// Adds the titles of the rates that are shown; `all` are those of the whole table.
void add_titles(std::vector<std::string>& titles, const Rates& all, Counting counting)
{
    for (const RateName& name : RATE_NAMES) {
        if (is_shown(name, all, counting)) {
            titles.insert(titles.end(), {">" + title_of(name), ">%"});
        }
    }
}

/// Adds the cells of these rates; without percentages where nothing can run.
void add_cells(std::vector<std::string>& cells, const Rates& rates, const Rates& all,
               Counting counting, bool is_left_out = false)
{
    for (const RateName& name : RATE_NAMES) {
        const Rate& rate = rates.*name.rate;
        if (is_shown(name, all, counting)) {
            cells.insert(cells.end(), {std::to_string(rate.hit) + "/" + std::to_string(rate.total),
                                       is_left_out ? "-" : percent(rate)});
        }
    }
}

void print_table(const std::vector<Row>& rows, Counting counting, const std::string& root)
{
    const Rates& all = rows.back().rates;
    std::vector<std::string> titles = {"MODULE", ">SOURCES", ">SYMBOLS"};
    add_titles(titles, all, counting);
    titles.insert(titles.end(), {">RUNS", "BUILT", "OUTPUT"});
    Table table(titles);
    for (const Row& row : rows) {
        std::vector<std::string> cells = {row.name, std::to_string(row.sources),
                                          std::to_string(row.symbols)};
        add_cells(cells, row.rates, all, counting, row.is_left_out);
        cells.insert(cells.end(), {row.is_left_out ? "not linked" : std::to_string(row.runs),
                                   row.built, shown_path(row.output, root)});
        table.add(cells);
    }
    table.print();
}

/// The directory of a path that is shown; "." for the project's.
std::string directory_of(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    return slash == path.npos ? "." : path.substr(0, std::max<std::size_t>(slash, 1));
}

/// What a table is about, beside modules.
enum class Part { file, directory };

void print_parts(const Coverage& coverage, Part part, Counting counting, const std::string& root)
{
    std::map<std::string, Coverage> parts;
    for (const auto& [path, source] : coverage) {
        const std::string shown = shown_path(path, root);
        parts[part == Part::file ? shown : directory_of(shown)][path] = source;
    }
    const Rates all = rates_of(coverage);
    std::vector<std::string> titles = {part == Part::file ? "FILE" : "DIRECTORY"};
    add_titles(titles, all, counting);
    Table table(titles);
    for (const auto& [name, sources] : parts) {
        std::vector<std::string> cells = {name};
        add_cells(cells, rates_of(sources), all, counting);
        table.add(cells);
    }
    std::vector<std::string> total = {"total"};
    add_cells(total, all, all, counting);
    table.add(total);
    table.print();
}

void print_json(const std::vector<Row>& rows, Counting counting, const std::string& root)
{
    const auto numbers = [&](const Row& row) {
        return "\"sources\": " + std::to_string(row.sources) +
               ", \"symbols\": " + std::to_string(row.symbols) + ", " +
               json_rates(row.rates, rows.back().rates, counting) +
               ", \"runs\": " + std::to_string(row.runs) +
               (row.is_left_out ? ", \"linked\": false" : "");
    };
    std::string out =
        "{\"format\": \"lltcov status\", \"version\": 1, \"project\": " + json_string(root) +
        ",\n\"modules\": [";
    const char* separator = "\n";
    for (std::size_t i = 0; i + 1 < rows.size(); ++i) {
        out += separator;
        out += "{\"name\": " + json_string(rows[i].name) + ", " + numbers(rows[i]) +
               ", \"built\": " + json_string(rows[i].built) +
               ", \"output\": " + json_string(rows[i].output) + "}";
        separator = ",\n";
    }
    out += "\n],\n\"total\": {" + numbers(rows.back()) + "}}\n";
    std::fputs(out.c_str(), stdout);
}

} // namespace

int run_status(const Arguments& arguments)
{
    const CommandLine line(arguments, with_selection_flags({"--json", "--files", "--directories"}),
                           with_selection_options({"--map", "--project"}));
    line.refuse_operands();
    if (line.has("--json") + line.has("--files") + line.has("--directories") > 1) {
        throw UsageError("choose one of --json, --files and --directories");
    }
    const Counting counting = wanted_counting();
    Findings findings;
    const ProjectData data = read_project_data(line, findings);
    const Selection selection(line, data.directory);
    CoverageMaker maker(data, counting, findings, selection);
    const Coverage coverage = maker.coverage_of(all_objects(data));
    if (line.has("--json")) {
        print_json(rows_of(data, maker, coverage), counting, data.directory);
    } else if (line.has("--files") || line.has("--directories")) {
        print_parts(coverage, line.has("--files") ? Part::file : Part::directory, counting,
                    data.directory);
    } else {
        print_table(rows_of(data, maker, coverage), counting, data.directory);
    }
    const bool is_written = finish_output();
    findings.print();
    const bool is_satisfied = selection.has_selected(coverage) && selection.is_reached(coverage);
    return is_written && is_satisfied && !findings.has_problems() ? 0 : 1;
}
