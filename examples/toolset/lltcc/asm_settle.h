// Lines that only the text as a whole can give to regions.
#pragma once

#include "asm_scan.h"

#include <vector>

/// A line directive that was in force in a region.
struct Trace {
    enum class Kind {
        code,  ///< an instruction followed
        mark,  ///< only marked the beginning of a statement
        brace, ///< a closing brace: no code of its own, but the end of what stands before it
    };
    SourceLine line;
    Kind kind;
};

/// Gives each region its lines, out of its traces in the order of the text.
void settle_lines(AsmText& text, const std::vector<std::vector<Trace>>& traces, Marks marks);
