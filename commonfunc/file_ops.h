// Files and directories: existence, creation, removal, replacement, and the program's own place.
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

/// 1 when the path exists (any kind of file; a dangling link does not exist), else 0.
int QMRFileExists(const char* path);

/// 1 when the path is a directory, else 0, also when it cannot be looked at.
int QMRPathIsDirectory(const char* path);

/// Creates the directory and its parents with the shell command "mkdir -p" when the path does not
/// exist. Returns 0 after printing "Create Directory'%s' failed!\n" when the command fails, else
/// 1, also when the path already existed, whatever its kind.
int QMRCreateDirectory(const char* path);

/// Prints and runs "rm -rf PATH/*", which leaves hidden files in place. Returns 1, also when `rm`
/// fails, and 0 when no shell could be started. An empty path would name the root directory:
/// nothing is printed or run then, and the result is 0 with a warning.
int DeleteAllFilesInDirectory(const char* path);

/// Writes the path of the running executable into `out`, at most 512 bytes without a NUL: the
/// caller clears its buffer of at least 512 bytes first. The " (deleted)" that the system appends
/// for a removed executable is cut off. On failure perror reports it. Always returns 1.
int QMRGetCurrProcName(char* out);

/// Same as `QMRGetCurrProcName`.
int GetCurrProcName(char* out);

/// The directory of the running executable, of whose path `path_length` bytes are looked at; "."
/// when it cannot be told.
std::string program_directory(std::size_t path_length = 512);

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
