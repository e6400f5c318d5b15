// A directory of shims.
#pragma once

#include <map>
#include <string>

/// The name of the directory with those of "lltcov run", see `kept_place`.
inline constexpr char RUN_SHIMS[] = "shims";

/// Writes a shim for each known tool on PATH into the directory, which is made where it is missing.
/// The real tools by their names; none, after a message, when not all could be written.
std::map<std::string, std::string> write_shims(const std::string& directory);
