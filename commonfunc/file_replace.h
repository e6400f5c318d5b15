// Files that take the place of older ones.
#pragma once

#include <cstdio>
#include <functional>
#include <string>

/// How the replacement of a file ended.
enum class Writing { done, not_opened, failed };

/// Replaces the content of the file by `text` so that at any instant the old or the new content is
/// there: another file, of a fixed name, is written beside it and renamed. An existing file keeps
/// its mode, and its owner where the process may give it that; a line says where it may not. Where
/// no file can be made beside it, or the path is no regular file, the file itself is opened and
/// written. `warn_not_written` reports anything but `done`; the old content then stays, unless
/// writing the file itself has failed half-way.
Writing replace_file(const std::string& path, const std::string& text);

/// Writes the content of a file; false when that failed, `errno` tells why.
using WriteContent = std::function<bool(std::FILE* file)>;

/// The same with a content that is never whole in memory.
Writing replace_file(const std::string& path, const WriteContent& write);

/// Tells on standard error why, by `errno`, the file cannot be written, and what to do.
void warn_not_written(const std::string& path);
