// A module's lines are those of its own objects; the total counts a source of several modules once.
#include "contract/record.h"
#include "lltcov/common/command_line.h"
#include "lltcov/common/commands.h"
#include "lltcov/common/console.h"
#include "lltcov/common/project.h"
#include "lltcov/report/coverage.h"
#include "lltcov/report/project_data.h"
#include "lltcov/report/report_text.h"
#include "lltcov/report/shown_sources.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdio>
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
    std::string built; ///< YYYY-MM-DD hh:mm:ss
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

std::vector<Row> rows_of(const ProjectData& data, Counting counting, Findings& findings)
{
    CoverageMaker maker(data, counting, findings);
    const std::vector<std::size_t> all = all_objects(data);
    Row total;
    total.name = "total";
    total.sources = sources_of(data, all);
    total.symbols = all.size();
    total.rates = rates_of(maker.coverage_of(all));
    Progress progress("adding up modules", data.modules.size());
    std::vector<Row> rows;
    for (const ModuleData& module : data.modules) {
        rows.push_back({module.module.name, sources_of(data, module.objects), module.objects.size(),
                        rates_of(maker.coverage_of(module.objects)), module.runs,
                        readable_time(module.built), module.output});
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

void print_table(const std::vector<Row>& rows, Counting counting, const std::string& root)
{
    std::vector<std::string> titles = {"MODULE", ">SOURCES", ">SYMBOLS"};
    for (const RateName& name : RATE_NAMES) {
        if (is_shown(name, rows.back().rates, counting)) {
            titles.insert(titles.end(), {">" + title_of(name), ">%"});
        }
    }
    titles.insert(titles.end(), {">RUNS", "BUILT", "OUTPUT"});
    Table table(titles);
    for (const Row& row : rows) {
        std::vector<std::string> cells = {row.name, std::to_string(row.sources),
                                          std::to_string(row.symbols)};
        for (const RateName& name : RATE_NAMES) {
            const Rate& rate = row.rates.*name.rate;
            if (is_shown(name, rows.back().rates, counting)) {
                cells.insert(
                    cells.end(),
                    {std::to_string(rate.hit) + "/" + std::to_string(rate.total), percent(rate)});
            }
        }
        cells.insert(cells.end(),
                     {std::to_string(row.runs), row.built, shown_path(row.output, root)});
        table.add(cells);
    }
    table.print();
}

void print_json(const std::vector<Row>& rows, Counting counting, const std::string& root)
{
    const auto numbers = [&](const Row& row) {
        return "\"sources\": " + std::to_string(row.sources) +
               ", \"symbols\": " + std::to_string(row.symbols) + ", " +
               json_rates(row.rates, rows.back().rates, counting) +
               ", \"runs\": " + std::to_string(row.runs);
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
    const CommandLine line(arguments, {"--json"}, {"--project"});
    line.refuse_operands();
    const Counting counting = wanted_counting();
    Findings findings;
    const ProjectData data = read_project_data(line, findings);
    const std::vector<Row> rows = rows_of(data, counting, findings);
    line.has("--json") ? print_json(rows, counting, data.directory)
                       : print_table(rows, counting, data.directory);
    const bool is_written = finish_output();
    findings.print();
    return is_written && !findings.has_problems() ? 0 : 1;
}
