// Files and directories: existence, creation, removal, replacement, and the program's own place.
#pragma once

#include <string>

/// 1 when the path exists (any kind of file; a dangling link does not exist), else 0.
int QMRFileExists(const char* path);

/// 1 when the path is a directory, else 0, also when it cannot be looked at.
int QMRPathIsDirectory(const char* path);

/// Creates the directory and its parents with the shell command "mkdir -p" when the path does not
/// exist. Returns 0 after printing "Create Directory'%s' failed!\n" when the command fails, else
/// 1, also when the path already existed, whatever its kind.
int QMRCreateDirectory(const char* path);

/// Prints and runs "rm -rf PATH/*", which leaves hidden files in place. Returns 1, also when `rm`
/// fails, and 0 when no shell could be started or the path is empty (nothing is run then).
int DeleteAllFilesInDirectory(const char* path);

/// Writes the path of the running executable into `out`, at most 512 bytes without a NUL: the
/// caller clears its buffer of at least 512 bytes first. The " (deleted)" that the system appends
/// for a removed executable is cut off. On failure perror reports it. Always returns 1.
int QMRGetCurrProcName(char* out);

/// Same as `QMRGetCurrProcName`.
int GetCurrProcName(char* out);

/// How the reading of a whole file ended.
enum class Reading { done, missing, not_opened, empty, no_memory, failed };

/// Reads the file whole into `content`; anything but `done` leaves it empty. What is no regular
/// file counts as not opened, and a file that shrinks meanwhile as failed.
Reading read_whole_file(const std::string& path, std::string& content);

/// How the replacement of a file ended.
enum class Writing { done, not_opened, failed };

/// Replaces the content of the file by `text` such that at any instant the old or the new content
/// is there: a new file is written beside and renamed. A path that exists and is no regular file
/// is opened and written itself. Otherwise than done: a warning, and the old content stays.
Writing replace_file(const std::string& path, const std::string& text);
