// One source per line, so that the text can be searched and compared line by line.
#include "lltcov/report/coverage.h"
#include "lltcov/report/report_formats.h"
#include "lltcov/report/report_text.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace
{

/// A list in JSON.
class List
{
public:
    void add(const std::string& item) { text_ += (text_.empty() ? "" : ", ") + item; }

    std::string text() const { return "[" + text_ + "]"; }

private:
    std::string text_;
};

const char* truth(bool value)
{
    return value ? "true" : "false";
}

std::string line_counts(const SourceCoverage& source)
{
    List list;
    for (const auto& [line, count] : source.lines) {
        list.add("[" + std::to_string(line) + ", " + std::to_string(count) + "]");
    }
    return list.text();
}

std::string function_counts(const SourceCoverage& source)
{
    List list;
    for (const auto& [symbol, function] : source.functions) {
        list.add("{\"name\": " + json_string(demangled(symbol)) + ", \"symbol\": " +
                 json_string(symbol) + ", \"line\": " + std::to_string(function.line) +
                 ", \"count\": " + std::to_string(function.count) + "}");
    }
    return list.text();
}

std::string branches_of(const LineBlock& block)
{
    List list;
    for (const Branch& branch : block.branches) {
        list.add("{\"count\": " + std::to_string(branch.count) + ", \"fallthrough\": " +
                 truth(branch.is_fallthrough) + ", \"throw\": " + truth(branch.is_throw) + "}");
    }
    return list.text();
}

std::string conditions_of(const LineBlock& block)
{
    List list;
    for (const Condition& condition : block.conditions) {
        List terms;
        for (const auto& [is_true, is_false] : condition.terms) {
            terms.add(std::string("{\"true\": ") + truth(is_true) +
                      ", \"false\": " + truth(is_false) + "}");
        }
        list.add(terms.text());
    }
    return list.text();
}

/// What each function has in each line, under this key; `text` gives a list.
std::string of_blocks(const SourceCoverage& source, const std::string& key,
                      std::string (*text)(const LineBlock&))
{
    List list;
    for (const auto& [line, blocks] : source.blocks) {
        for (const auto& [symbol, block] : blocks) {
            const std::string content = text(block);
            if (content != List().text()) {
                list.add("{\"line\": " + std::to_string(line) + ", \"symbol\": " +
                         json_string(symbol) + ", \"" + key + "\": " + content + "}");
            }
        }
    }
    return list.text();
}

std::string source_object(const std::string& path, const SourceCoverage& source, const Rates& all,
                          Counting counting)
{
    std::string out = "{\"path\": " + json_string(path) + ", " +
                      json_rates(rates_of(source), all, counting) +
                      ", \"line_counts\": " + line_counts(source) +
                      ", \"function_counts\": " + function_counts(source);
    if (counting >= Counting::branches) {
        out += ", \"branch_counts\": " + of_blocks(source, "branches", branches_of);
    }
    if (all.conditions.total > 0) {
        out += ", \"condition_outcomes\": " + of_blocks(source, "conditions", conditions_of);
    }
    return out + "}";
}

} // namespace

std::string as_json(const Report& report)
{
    const Rates rates = rates_of(report.coverage);
    std::string out =
        "{\"format\": \"lltcov\", \"version\": 1, \"project\": " + json_string(report.root) +
        ",\n" + json_rates(rates, rates, report.counting) + ",\n\"sources\": [";
    const char* separator = "\n";
    for (const auto& [path, source] : report.coverage) {
        out += separator + source_object(path, source, rates, report.counting);
        separator = ",\n";
    }
    return out + "\n]}\n";
}
