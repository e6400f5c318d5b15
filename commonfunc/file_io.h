// Files read and written whole, and what is needed beside standard input and output for that.
#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <sys/types.h>

/// An open file that is closed at the end of its scope; may be null.
using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

/// Opens the file by fopen(3), not to be inherited by tools (`mode` ends in "e"); null on failure,
/// and for a FIFO, which would block.
File open_file(const std::string& path, const char* mode);

/// Writes the whole text to the descriptor; false on an error, with `errno` set.
bool write_all(int fd, const char* text, std::size_t size);

/// The file mode creation mask of the process.
mode_t process_umask();

/// How the reading of a whole file ended.
enum class Reading { done, missing, not_opened, empty, no_memory, failed };

/// Reads the file whole into `content`; anything but `done` leaves it empty. What is no regular
/// file, and a file that shrinks meanwhile, has failed.
Reading read_whole_file(const std::string& path, std::string& content);

/// How the replacement of a file ended.
enum class Writing { done, not_opened, failed };

/// Replaces the content of the file by `text` such that at any instant the old or the new content
/// is there: a new file is written beside and renamed. Where that is impossible, because no file
/// can be made beside or the path is no regular file, the file itself is opened and written.
/// A warning tells of anything but `done`; the old content stays unless that writing failed.
Writing replace_file(const std::string& path, const std::string& text);
