// What must be known of a compiler before it is called, asked once per project and compiler.
#pragma once

#include "toolset/lltcc/command.h"

#include <string>

/// A compiler, as far as its counters are concerned.
struct Compiler {
    enum class Kind { gcc, clang, other };

    Kind kind = Kind::other;
    int major = 0;       ///< first number of its version
    std::string headers; ///< regular expressions, ";" between them: its own header directories
    std::string reader;  ///< gcc: its gcov; clang: directory of LLVM's tools; empty when not found
    std::string assembler; ///< the program that it takes for its assembler
};

/// The compiler of the command. The answer is kept in the temporary area (LLTTEMP/codemeasure)
/// until the program or the options that choose its target change.
Compiler know_compiler(const std::string& area, const CompileCommand& command);
