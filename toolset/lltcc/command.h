// The wrapped command: what kind of compile it is, and what of it the records need.
#pragma once

#include "toolset/common/process.h"

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

/// A file that a compile makes an object of.
struct CompileInput {
    std::string path;     ///< as written
    std::size_t position; ///< among the words
    bool is_source;       ///< C or C++; else assembly
};

/// What the arguments of a compile say.
struct CompileCommand {
    std::string why_plain; ///< reason not to instrument; empty when there is none
    Words words;           ///< the command with the words of its response files
    bool has_lto = false;  ///< the code is made only at the link
    std::vector<CompileInput> inputs;
    std::string output;        ///< empty without "-o"
    std::string excluded;      ///< value of the last -fprofile-exclude-files
    bool is_optimised = false; ///< by the last -O
    Words kept; ///< compiler and the options that matter to a stub of the same module
    std::vector<std::pair<std::string, std::string>> path_maps; ///< real and recorded prefix
};

/// What stands in front of the compiler in a command.
struct Launchers {
    Words kept;    ///< a compiler cache, which may stay
    Words skipped; ///< names of what cannot work with this driver: other caches and distributors
};

/// Takes what stands in front of the compiler off the command. A cache may stay; what sends a
/// compile to another machine finds no assembler of ours there.
Launchers take_launchers(Words& command);

/// Reads the command, which begins with the compiler.
CompileCommand read_command(const Words& command);

/// The words of a command that compiles the input alone.
Words words_for_input(const CompileCommand& command, const CompileInput& input);
