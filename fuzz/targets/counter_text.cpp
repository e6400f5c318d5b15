// Assembly texts of gcc and clang with their counters taken out: "g" or "c", then the text.
#include "toolset/counters/counter_text.h"
#include "fuzz/fuzz.h"

#include <algorithm>

namespace
{

/// Each counter has a place of its own in the array, and every reference leads into it.
void check(const CounterText& out)
{
    const RecordedCounters& record = out.record;
    std::vector<std::pair<std::uint64_t, std::uint64_t>> runs;
    for (const RecordedFunction& function : record.functions) {
        for (const CounterRun& run : function.counters) {
            fuzz::same("alignment of counters", 0, run.offset % 8);
            runs.emplace_back(run.offset, run.offset + 8ULL * run.number);
        }
    }
    std::sort(runs.begin(), runs.end());
    for (std::size_t i = 0; i < runs.size(); ++i) {
        const std::uint64_t end = i + 1 < runs.size() ? runs[i + 1].first : record.array_bytes;
        fuzz::holds("counters have bytes of their own in the array", runs[i].second <= end);
    }
    for (const TextPiece& piece : out.pieces) {
        fuzz::holds("a reference leads into the array",
                    piece.offset == TextPiece::NONE || piece.offset <= record.array_bytes);
    }
    fuzz::holds("the end joins by or", record.or_bytes <= record.array_bytes);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::Input input(data, size);
    const bool is_clang = input.byte() == 'c';
    const std::string text = input.rest();
    const bool has_counters = text.find(is_clang ? "__prof" : "__gcov") != std::string::npos ||
                              text.find(is_clang ? "__llvm_pr" : "LPBX") != std::string::npos;
    try {
        const CounterText out = is_clang ? read_clang_text(text) : read_gcc_text(text);
        check(out);
        const std::string renamed = with_array(out, "ARRAY");
        fuzz::same("text without counters", has_counters ? "" : text, has_counters ? "" : renamed);
        fuzz::holds("no counters are left",
                    is_clang || renamed.find("\n__gcov0.") == std::string::npos);
    } catch (const NotInstrumentable&) {
        fuzz::holds("what has no counters is not refused", has_counters);
    }
    return 0;
}
