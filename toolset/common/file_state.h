// What stands on disk already, so that it need not be made again.
#pragma once

#include <set>
#include <string>

/// Whether the file can be read and has this content.
bool file_holds(const std::string& path, const std::string& text);

/// A line about the file, or what a link leads to, that changes as soon as it is written,
/// replaced, renamed, removed or made: mode, size, inode, times. The time of the last change of a
/// file's inode cannot be set by a program, unlike that of its content. Directories are all alike.
std::string state_of_file(const std::string& path);

/// The lines of all files and directories below the directory, after their paths there. Nothing
/// whose path there is one of `passed_over` is looked at.
std::string state_of_tree(const std::string& directory, const std::set<std::string>& passed_over);
