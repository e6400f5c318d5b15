// Directory trees removed and copied as `rm -rf` and `cp -rf` do, without a shell per tree.
#pragma once

#include "commonfunc/directory.h" // IWYU pragma: export

#include <string>

/// Removes the file or directory tree like "rm -rf": links themselves, not what they name; a
/// missing path is no error; what cannot be removed stays, and so do "." and "..".
void remove_tree(const std::string& path);

/// Removes what the shell pattern DIRECTORY/START* names: entries whose name begins with `start`;
/// hidden ones only when `start` begins with a dot itself. False when one of them stays.
bool remove_entries(const std::string& directory, const std::string& start);

/// Copies a file or tree like "cp -rf SOURCE DESTINATION": into the destination when that is a
/// directory (a source ".." to it), else to it. Links are copied as links, special files are made
/// anew; file modes are the source's less the umask. A directory is not copied into itself. False
/// with a warning when something could not be copied; the rest is copied all the same.
bool copy_tree(const std::string& source, const std::string& destination);
