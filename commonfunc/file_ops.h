// Files and directories: existence, creation, removal, and the program's own place.
#pragma once

#include <cstddef>
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
/// fails, and 0 when no shell could be started. An empty path would name the root directory:
/// nothing is printed or run then, and the result is 0 with a warning.
int DeleteAllFilesInDirectory(const char* path);

/// Prints what `DeleteAllFilesInDirectory` prints, and removes the same without a shell, which
/// takes longer to expand thousands of names than their removal does. A warning names what
/// stays.
void clear_directory_by_itself(const std::string& path);

/// Writes the path of the running executable into `out`, at most 512 bytes without a NUL: the
/// caller clears its buffer of at least 512 bytes first. The " (deleted)" that the system appends
/// for a removed executable is cut off. On failure perror reports it. Always returns 1.
int QMRGetCurrProcName(char* out);

/// Same as `QMRGetCurrProcName`.
int GetCurrProcName(char* out);

/// The directory in the first `path_length` bytes of the path that `QMRGetCurrProcName` gives; "."
/// when there is none.
std::string cut_program_directory(std::size_t path_length);

/// The directory of the running executable; where /proc is missing, that of the path by which it
/// was started; "." when neither is known.
std::string program_directory();
