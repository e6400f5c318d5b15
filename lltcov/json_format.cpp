// One source per line, so that the text can be searched and compared line by line.
#include "lltcov/report_formats.h"
#include "lltcov/report_text.h"

namespace
{

std::string source_object(const std::string& path, const SourceCoverage& source)
{
    const Rates rates = rates_of(source);
    std::string out = "{\"path\": " + json_string(path) + ", \"lines\": " + json_rate(rates.lines) +
                      ", \"functions\": " + json_rate(rates.functions) + ", \"line_counts\": [";
    const char* separator = "";
    for (const auto& [line, count] : source.lines) {
        out += separator;
        out += "[" + std::to_string(line) + ", " + std::to_string(count) + "]";
        separator = ", ";
    }
    out += "], \"function_counts\": [";
    separator = "";
    for (const auto& [symbol, function] : source.functions) {
        out += separator;
        out += "{\"name\": " + json_string(demangled(symbol)) +
               ", \"symbol\": " + json_string(symbol) +
               ", \"line\": " + std::to_string(function.line) +
               ", \"count\": " + std::to_string(function.count) + "}";
        separator = ", ";
    }
    return out + "]}";
}

} // namespace

std::string as_json(const Report& report)
{
    const Rates rates = rates_of(report.coverage);
    std::string out =
        "{\"format\": \"lltcov\", \"version\": 1, \"project\": " + json_string(report.root) +
        ",\n\"lines\": " + json_rate(rates.lines) +
        ", \"functions\": " + json_rate(rates.functions) + ",\n\"sources\": [";
    const char* separator = "\n";
    for (const auto& [path, source] : report.coverage) {
        out += separator + source_object(path, source);
        separator = ",\n";
    }
    return out + "\n]}\n";
}
