// The wrapped command: what kind of compile it is, and what of it the records need.
#pragma once

#include "examples/toolset/common/process.h"

#include <string>
#include <utility>
#include <vector>

/// What the arguments of a compile say.
struct CompileCommand {
    std::string why_plain; ///< reason not to instrument; empty when there is none
    bool is_clang = false;
    bool has_debug_info = false;
    bool optimizes = false;
    bool has_lto = false; ///< the code is made only at the link
    Words sources;        ///< as written
    Words kept;           ///< compiler and the options that matter to a stub of the same module
    std::vector<std::pair<std::string, std::string>> path_maps; ///< real and recorded prefix
};

/// The command without a compiler cache or distributor in front of the compiler: a cache would hand
/// out objects without records, another machine has no assembler of ours.
Words without_launcher(const Words& command);

/// Reads the command with its response files.
CompileCommand read_command(const Words& command);
