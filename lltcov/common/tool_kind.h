// Which tools the shims stand in for.
#pragma once

#include <string>

/// What a tool does, which decides when its call goes through the wrapper.
enum class ToolKind {
    none,
    compiler,
    linker,
    archiver,
    launcher, ///< runs a compiler that it may leave out: a cache, a distributor
};

/// The kind of a tool by its file name: "g++", "clang-14", "x86_64-linux-gnu-gcc-ar"; `none` for
/// what gets no shim.
ToolKind kind_of_tool(const std::string& name);
