// The lines of the map come from the regions that kept a counter; what the compiler recorded as
// file numbers becomes paths here.
#include "probe_map.h"

#include <algorithm>
#include <map>

namespace
{

/// One line per source that the region has lines of, so that a probe may have several.
std::string probe_lines(const Region& region, std::size_t index, const std::string& function,
                        SourceFiles& files)
{
    std::map<std::string, std::set<int>> by_path;
    for (const auto& [file, line] : region.lines) {
        by_path[files.path(file)].insert(line);
    }
    std::string out;
    for (const auto& [path, lines] : by_path) {
        std::string list;
        for (const int line : lines) {
            list += (list.empty() ? "" : ",") + std::to_string(line);
        }
        out += "probe " + std::to_string(index) + " " + list + " " + function + " " + path + "\n";
    }
    return out;
}

/// One line per function; its parts and clones count as one, which begins where the first does.
std::string function_lines(const AsmText& text, SourceFiles& files)
{
    std::map<std::string, SourceLine> functions;
    for (const Function& function : text.functions) {
        if (function.line.second > 0) {
            SourceLine& line = functions.emplace(function.symbol, function.line).first->second;
            line = std::min(line, function.line);
        }
    }
    std::string out;
    for (const auto& [symbol, line] : functions) {
        out += "function " + symbol + " " + std::to_string(line.second) + " " +
               files.path(line.first) + "\n";
    }
    return out;
}

} // namespace

std::string probe_map(const AsmText& text, const std::vector<std::size_t>& probes,
                      const Record& record, SourceFiles& files)
{
    std::string out = "lltprobes 1\nsource " + record.source + "\nobject " + record.object + "\n";
    for (std::size_t i = 0; i < probes.size(); ++i) {
        const Region& region = text.regions[probes[i]];
        const Function& function = text.functions[static_cast<std::size_t>(region.function)];
        out += probe_lines(region, i, function.symbol, files);
    }
    return out + function_lines(text, files);
}
