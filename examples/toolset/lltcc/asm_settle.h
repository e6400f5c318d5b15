// Lines that only the text as a whole can give to regions.
#pragma once

#include "asm_scan.h"

#include <string_view>
#include <vector>

/// How a region is entered and left, and the marks that wait for a decision.
struct Links {
    std::vector<std::string_view> labels;
    std::vector<std::string_view> jumps; ///< labels that its end jumps to
    bool falls_through = false;          ///< into the next region
    std::vector<SourceLine> leading;     ///< marks before the first instruction
};

/// Gives each region its leading marks, but those of lines that a region before it holds code of.
void settle_leading_marks(AsmText& text, const std::vector<Links>& links);

/// Where the body of a function is inlined, its first line is there but not the line of its name.
/// Whoever runs the one has entered the other.
void credit_inlined_entries(AsmText& text);
