// The elements and attributes that Cobertura's coverage-04.dtd requires, in its order.
#include "lltcov/common/project.h"
#include "lltcov/report/coverage.h"
#include "lltcov/report/report_formats.h"
#include "lltcov/report/report_text.h"

#include <cstdint>
#include <cstdio>
#include <ctime>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace
{

std::string directory_of(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    return slash == path.npos ? "." : path.substr(0, slash);
}

/// A rate from 0 to 1; of nothing, `empty`.
std::string fraction(const Rate& rate, double empty)
{
    const double value =
        rate.total == 0 ? empty : static_cast<double>(rate.hit) / static_cast<double>(rate.total);
    char text[32];
    std::snprintf(text, sizeof text, "%.4f", value);
    return text;
}

std::string rate_attributes(const Rate& lines, const Rate& branches)
{
    return "line-rate=\"" + fraction(lines, 1) + "\" branch-rate=\"" + fraction(branches, 0) +
           "\" complexity=\"0\"";
}

/// HIT of TOTAL with the whole percentage before it.
std::string coverage_text(const Rate& rate)
{
    return std::to_string(rate.hit * 100 / rate.total) + "% (" + std::to_string(rate.hit) + "/" +
           std::to_string(rate.total) + ")";
}

std::string condition_elements(const std::map<std::string, LineBlock>& blocks)
{
    std::string out;
    std::size_t number = 0;
    for (const auto& block : blocks) {
        for (const Condition& condition : block.second.conditions) {
            const Rate rate = rate_of(condition);
            out += "<condition number=\"" + std::to_string(number++) +
                   "\" type=\"mcdc\" coverage=\"" + std::to_string(rate.hit * 100 / rate.total) +
                   "%\"/>";
        }
    }
    return out;
}

std::string line_element(std::uint32_t line, std::uint64_t count,
                         const std::map<std::string, LineBlock>& blocks = {})
{
    Rate branches;
    for (const auto& block : blocks) {
        for (const Branch& branch : block.second.branches) {
            branches.add(branch.count);
        }
    }
    const std::string conditions = condition_elements(blocks);
    return "<line number=\"" + std::to_string(line) + "\" hits=\"" + std::to_string(count) +
           (branches.total == 0
                ? "\" branch=\"false\""
                : "\" branch=\"true\" condition-coverage=\"" + coverage_text(branches) + "\"") +
           (conditions.empty() ? "/>" : "><conditions>" + conditions + "</conditions></line>");
}

std::string class_element(const std::string& path, const SourceCoverage& source)
{
    const std::string name = xml_text(path);
    const Rates rates = rates_of(source);
    std::string out = "<class name=\"" + name.substr(name.rfind('/') + 1) + "\" filename=\"" +
                      name + "\" " + rate_attributes(rates.lines, rates.branches) + "><methods>\n";
    for (const auto& [symbol, function] : source.functions) {
        Rate rate;
        rate.add(function.count);
        out += "<method name=\"" + xml_text(demangled(symbol)) + "\" signature=\"\" " +
               rate_attributes(rate, {}) + "><lines>" +
               line_element(function.line, function.count) + "</lines></method>\n";
    }
    out += "</methods><lines>\n";
    for (const auto& [line, count] : source.lines) {
        const auto blocks = source.blocks.find(line);
        out += (blocks == source.blocks.end() ? line_element(line, count)
                                              : line_element(line, count, blocks->second)) +
               "\n";
    }
    return out + "</lines></class>\n";
}

/// One package per directory.
struct Package {
    Rate lines;
    Rate branches;
    std::string classes;
};

std::string head(const Report& report)
{
    const Rates rates = rates_of(report.coverage);
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<!DOCTYPE coverage SYSTEM \"http://cobertura.sourceforge.net/xml/coverage-04.dtd\">\n"
           "<coverage " +
           rate_attributes(rates.lines, rates.branches) + " lines-covered=\"" +
           std::to_string(rates.lines.hit) + "\" lines-valid=\"" +
           std::to_string(rates.lines.total) + "\" branches-covered=\"" +
           std::to_string(rates.branches.hit) + "\" branches-valid=\"" +
           std::to_string(rates.branches.total) + "\" version=\"lltcov 1\" timestamp=\"" +
           std::to_string(std::time(nullptr)) + "\">\n<sources><source>" + xml_text(report.root) +
           "</source></sources>\n<packages>\n";
}

} // namespace

std::string as_cobertura(const Report& report)
{
    std::map<std::string, Package> packages;
    for (const auto& [path, source] : report.coverage) {
        const std::string shown = shown_path(path, report.root);
        Package& package = packages[directory_of(shown)];
        const Rates rates = rates_of(source);
        package.lines.add(rates.lines);
        package.branches.add(rates.branches);
        package.classes += class_element(shown, source);
    }
    std::string out = head(report);
    for (const auto& [name, package] : packages) {
        out += "<package name=\"" + xml_text(name) + "\" " +
               rate_attributes(package.lines, package.branches) + "><classes>\n" + package.classes +
               "</classes></package>\n";
    }
    return out + "</packages>\n</coverage>\n";
}
