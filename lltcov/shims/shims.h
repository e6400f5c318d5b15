// A directory of shims.
#pragma once

#include <map>
#include <string>

/// Where those of "lltcov run" are, below what the tool set writes.
inline constexpr char RUN_SHIMS[] = "/shims";

/// Writes a shim for each known tool on PATH into the directory, which is made where it is missing.
/// The real tools by their names; none, after a message, when not all could be written.
std::map<std::string, std::string> write_shims(const std::string& directory);
