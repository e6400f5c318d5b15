// The rules are those by which gcov counts the blocks of a program, so that both say the same:
//
// - A block counts for the line that it ends in, its largest one. A line in which no block of the
//   function ends takes every block that has something of it. (`if (a) fail();` in one line: the
//   code behind it begins with a mark of that line, but ends elsewhere.) clang's blocks say so much
//   less by their ends that each counts for all its lines.
// - The mark of a statement without code counts when the user asked for debug information; if not,
//   only for a line that no block has code of, and no block ends in it.
// - A region without a probe is no block: the compiler made it later, to copy values. It counts
//   only for lines that nothing else in its function stands for.
#include "asm_settle.h"

#include <algorithm>

namespace
{

using Lines = std::set<SourceLine>;
using Traces = std::vector<Trace>;

bool is_block(const Region& region)
{
    return region.probe != Region::Probe::none;
}

/// The lines that blocks have code of.
Lines lines_with_code(const AsmText& text, const std::vector<Traces>& traces)
{
    Lines out;
    for (std::size_t i = 0; i < traces.size(); ++i) {
        for (const Trace& trace : traces[i]) {
            if (is_block(text.regions[i]) && trace.kind == Trace::Kind::code) {
                out.insert(trace.line);
            }
        }
    }
    return out;
}

/// The largest line of the last source file in the traces; 0 without any. A mark that only stands
/// in for code ends no block that has some.
SourceLine end_of(const Traces& traces, Marks marks)
{
    const bool has_code = std::any_of(traces.begin(), traces.end(), [](const Trace& trace) {
        return trace.kind != Trace::Kind::mark;
    });
    SourceLine end{0, 0};
    for (const Trace& trace : traces) {
        if (trace.kind == Trace::Kind::mark && marks == Marks::stand_in && has_code) {
            continue;
        }
        end = end.first == trace.line.first ? std::max(end, trace.line) : trace.line;
    }
    return end;
}

/// A block goes on behind a call that may not return: what was counted before the call needs no
/// counter there.
void keep_news(std::vector<Region>& regions)
{
    Lines counted;
    for (Region& region : regions) {
        if (region.probe != Region::Probe::after) {
            counted = region.lines;
            continue;
        }
        for (const SourceLine& line : Lines(region.lines)) {
            if (!counted.insert(line).second) {
                region.lines.erase(line);
            }
        }
    }
}

/// Takes from regions without a probe what blocks of their function have.
void keep_orphans(AsmText& text)
{
    std::vector<Lines> of_blocks(text.functions.size());
    for (const Region& region : text.regions) {
        if (region.function >= 0 && is_block(region)) {
            of_blocks[static_cast<std::size_t>(region.function)].insert(region.lines.begin(),
                                                                        region.lines.end());
        }
    }
    for (Region& region : text.regions) {
        if (region.function >= 0 && !is_block(region)) {
            const Lines& known = of_blocks[static_cast<std::size_t>(region.function)];
            for (const SourceLine& line : Lines(region.lines)) {
                if (known.count(line) != 0) {
                    region.lines.erase(line);
                }
            }
        }
    }
}

} // namespace

void settle_lines(AsmText& text, const std::vector<Traces>& all, Marks marks)
{
    const Lines with_code = lines_with_code(text, all);
    std::vector<Traces> counting(all.size());
    std::set<std::pair<int, SourceLine>> ends;
    for (std::size_t i = 0; i < all.size(); ++i) {
        std::copy_if(all[i].begin(), all[i].end(), std::back_inserter(counting[i]),
                     [&](const Trace& trace) {
                         return trace.kind != Trace::Kind::mark || marks == Marks::count ||
                                with_code.count(trace.line) == 0;
                     });
        if (is_block(text.regions[i]) && !text.has_long_blocks) {
            ends.insert({text.regions[i].function, end_of(counting[i], marks)});
        }
    }
    for (std::size_t i = 0; i < all.size(); ++i) {
        const SourceLine end = end_of(counting[i], marks);
        for (const Trace& trace : counting[i]) {
            if (trace.kind != Trace::Kind::brace &&
                (trace.line == end || ends.count({text.regions[i].function, trace.line}) == 0)) {
                text.regions[i].lines.insert(trace.line);
            }
        }
    }
    keep_orphans(text);
    keep_news(text.regions);
}
