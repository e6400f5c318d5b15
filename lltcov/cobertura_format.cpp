// The elements and attributes that Cobertura's coverage-04.dtd requires, in its order.
#include "lltcov/project.h"
#include "lltcov/report_formats.h"
#include "lltcov/report_text.h"

#include <cstdio>
#include <ctime>

namespace
{

std::string directory_of(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    return slash == path.npos ? "." : path.substr(0, slash);
}

std::string rate_attributes(const Rate& rate)
{
    const double value =
        rate.total == 0 ? 1.0 : static_cast<double>(rate.hit) / static_cast<double>(rate.total);
    char text[100];
    std::snprintf(text, sizeof text, "line-rate=\"%.4f\" branch-rate=\"0\" complexity=\"0\"",
                  value);
    return text;
}

std::string line_element(std::uint32_t line, std::uint64_t count)
{
    return "<line number=\"" + std::to_string(line) + "\" hits=\"" + std::to_string(count) +
           "\" branch=\"false\"/>";
}

std::string class_element(const std::string& path, const SourceCoverage& source)
{
    const std::string name = xml_text(path);
    std::string out = "<class name=\"" + name.substr(name.rfind('/') + 1) + "\" filename=\"" +
                      name + "\" " + rate_attributes(rates_of(source).lines) + "><methods>\n";
    for (const auto& [symbol, function] : source.functions) {
        Rate rate;
        rate.add(function.count);
        out += "<method name=\"" + xml_text(demangled(symbol)) + "\" signature=\"\" " +
               rate_attributes(rate) + "><lines>" + line_element(function.line, function.count) +
               "</lines></method>\n";
    }
    out += "</methods><lines>\n";
    for (const auto& [line, count] : source.lines) {
        out += line_element(line, count) + "\n";
    }
    return out + "</lines></class>\n";
}

/// One package per directory.
struct Package {
    Rate lines;
    std::string classes;
};

std::string head(const Report& report)
{
    const Rate lines = rates_of(report.coverage).lines;
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<!DOCTYPE coverage SYSTEM \"http://cobertura.sourceforge.net/xml/coverage-04.dtd\">\n"
           "<coverage " +
           rate_attributes(lines) + " lines-covered=\"" + std::to_string(lines.hit) +
           "\" lines-valid=\"" + std::to_string(lines.total) +
           "\" branches-covered=\"0\" branches-valid=\"0\" version=\"lltcov 1\" timestamp=\"" +
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
        const Rate lines = rates_of(source).lines;
        package.lines.hit += lines.hit;
        package.lines.total += lines.total;
        package.classes += class_element(shown, source);
    }
    std::string out = head(report);
    for (const auto& [name, package] : packages) {
        out += "<package name=\"" + xml_text(name) + "\" " + rate_attributes(package.lines) +
               "><classes>\n" + package.classes + "</classes></package>\n";
    }
    return out + "</packages>\n</coverage>\n";
}
