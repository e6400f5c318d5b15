// The text of a shim: a shell script that stands in for a tool.
#pragma once

#include "lltcov/common/tool_kind.h"

#include <string>

/// The script that stands in for the tool with the absolute path `real`. While "LLT_WRAP" is unset,
/// empty or 0 it becomes the tool; else it goes through `wrapper` (absolute path) where the call
/// compiles, links or fills an archive; a launcher is left out then. It starts no process of its
/// own.
std::string shim_text(ToolKind kind, const std::string& real, const std::string& wrapper);

/// The tool that a shim stands for, of whatever directory; empty when the file is no shim.
std::string tool_of_shim(const std::string& path);

/// True for a shim, of whatever directory.
bool is_shim(const std::string& path);
