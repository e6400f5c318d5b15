// Pieces of assembly for tests of the compiler driver, cut from what the compilers write.
#pragma once

#include "examples/toolset/lltcc/asm_rewrite.h"

#include <string>

/// A probe in the form that most have.
inline const std::string CALL = "\tcall\t__sanitizer_cov_trace_pc@PLT\n";

/// The text of a source with a function "f" that begins in line 2 of t.c.
inline std::string function(const std::string& body)
{
    return "\t.file\t\"t.c\"\n\t.text\n\t.type\tf, @function\nf:\n\t.loc 1 2 1\n" + body;
}

/// The text with counters in the array "A".
inline std::string rewritten(const std::string& text, Counters counters,
                             bool drop_debug_info = false)
{
    SourceFiles files({});
    const AsmText read = scan_assembly(text, files, Marks::count);
    Rewriting how;
    how.array = "A";
    how.counters = counters;
    how.drop_debug_info = drop_debug_info;
    return rewrite(read, choose_probes(read), how);
}

inline bool contains(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}
