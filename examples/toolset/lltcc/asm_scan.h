// The compiler's assembly text read into regions: pieces of straight code between labels and
// jumps, each with the source lines of its instructions and the compiler's probe call in it.
#pragma once

#include "source_files.h"

#include <cstddef>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Why a text cannot be instrumented; the source is then compiled plainly.
struct NotInstrumentable : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// The target, as the probes' form tells it.
enum class Machine { none, x86_64, aarch64 };

/// A source line: number of the `.file` directive and line number.
using SourceLine = std::pair<int, int>;

/// Straight code: when its beginning runs, its end does.
struct Region {
    enum class Probe {
        none,  ///< the compiler put no probe here: late copies of values, mostly
        call,  ///< a call, to be replaced by an increment
        tail,  ///< a jump instead of call and return
        after, ///< none, but the region goes on behind a call that may not return
        entry, ///< none, but the beginning of a function: its first block had no code yet when the
               ///< compiler placed its probes, as a loop's `i = 0` becomes some only later
        nop,   ///< none, but a jump target that begins with a nop: without optimisation that keeps
               ///< the line of a jump (`break`) that the compiler made part of the jumps before it
    };
    Probe probe = Probe::none;
    /// Index of the probe's text line; without one, of the first instruction (0: it has none).
    std::size_t at = 0;
    int function = -1; ///< index into `AsmText::functions`
    std::set<SourceLine> lines;
};

/// A function of the text.
struct Function {
    std::string symbol; ///< assembler name, without suffixes of clones and cold parts
    SourceLine line{0, 0};
};

/// What was read. The views look into the text given to `scan_assembly`.
struct AsmText {
    Machine machine = Machine::none; ///< none: the text holds no probe
    bool intel_syntax = false;
    bool has_long_blocks = false; ///< clang: probes were placed when blocks had been joined
    std::string main_name;        ///< the source, as the `.file` directive without number says
    std::vector<std::string_view> text;
    std::vector<Function> functions;
    std::vector<Region> regions; ///< in the order of the text
};

/// The function that the compiler calls at the beginning of each basic block.
inline constexpr std::string_view PROBE = "__sanitizer_cov_trace_pc";

/// Whether the mark of a statement's beginning counts like its code, as it does for gcov when the
/// user asked for debug information.
enum class Marks { count, stand_in };

/// Reads the text and notes its files in `files`. Throws NotInstrumentable at a probe in a form
/// that is not known.
AsmText scan_assembly(std::string_view text, SourceFiles& files, Marks marks);
