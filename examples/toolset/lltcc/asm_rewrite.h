// Probes become increments of the source's own counters.
#pragma once

#include "asm_scan.h"

#include <string>
#include <vector>

/// How a counter is kept: a bit of a 32-bit word, 8 bits, or 32 bits.
enum class Counters { bits, bytes, words };

/// The counters of a stub mode, which its stubs declare room for.
Counters counters_of(int stub_mode);

/// True in the stub modes whose stub only declares the arrays: the object defines its own.
bool object_defines_array(int stub_mode);

/// Which regions of the text get a counter, in counter order: indexes into `AsmText::regions`.
/// These are all with lines, and the first of each function, which counts its calls.
std::vector<std::size_t> choose_probes(const AsmText& text);

/// What the rewritten text counts into.
struct Rewriting {
    std::string array; ///< symbol of the counter array
    Counters counters;
    bool define_array = false;
    bool drop_debug_info = false; ///< line numbers were asked for by the driver, not by the user
};

/// The text with an increment at each chosen region and without any other probe.
std::string rewrite(const AsmText& text, const std::vector<std::size_t>& probes,
                    const Rewriting& how);
