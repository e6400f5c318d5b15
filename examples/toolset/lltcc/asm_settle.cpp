#include "asm_settle.h"

#include <algorithm>
#include <climits>
#include <map>

void settle_leading_marks(AsmText& text, const std::vector<Links>& links)
{
    std::map<std::string_view, std::size_t> by_label;
    for (std::size_t i = 0; i < links.size(); ++i) {
        for (const std::string_view label : links[i].labels) {
            by_label[label] = i;
        }
    }
    std::vector<std::set<SourceLine>> from(links.size()); ///< lines of the regions before each
    for (std::size_t i = 0; i < links.size(); ++i) {
        const std::set<SourceLine>& lines = text.regions[i].lines;
        for (const std::string_view label : links[i].jumps) {
            const auto target = by_label.find(label);
            if (target != by_label.end() && target->second != i) {
                from[target->second].insert(lines.begin(), lines.end());
            }
        }
        if (links[i].falls_through && i + 1 < links.size()) {
            from[i + 1].insert(lines.begin(), lines.end());
        }
    }
    for (std::size_t i = 0; i < links.size(); ++i) {
        for (const SourceLine& line : links[i].leading) {
            if (from[i].count(line) == 0) {
                text.regions[i].lines.insert(line);
            }
        }
    }
}

void credit_inlined_entries(AsmText& text)
{
    std::vector<SourceLine> bodies(text.functions.size(), {0, INT_MAX});
    for (const Region& region : text.regions) {
        if (region.function >= 0) {
            const auto function = static_cast<std::size_t>(region.function);
            const SourceLine name = text.functions[function].line;
            const auto next = region.lines.upper_bound(name);
            if (name.second > 0 && next != region.lines.end() && next->first == name.first) {
                bodies[function] = {name.first, std::min(bodies[function].second, next->second)};
            }
        }
    }
    std::map<SourceLine, SourceLine> names; // by the first line of the body
    for (std::size_t i = 0; i < bodies.size(); ++i) {
        names.emplace(bodies[i], text.functions[i].line);
    }
    for (Region& region : text.regions) {
        const SourceLine own = region.function < 0
                                   ? SourceLine{0, 0}
                                   : text.functions[static_cast<std::size_t>(region.function)].line;
        for (const SourceLine& line : std::set<SourceLine>(region.lines)) {
            const auto name = names.find(line);
            if (name != names.end() && name->second != own) {
                region.lines.insert(name->second);
            }
        }
    }
}
