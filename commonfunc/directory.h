// Directories: the names that they hold, and their files by these names.
#pragma once

#include <cstddef>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <string>
#include <utility>
#include <vector>

/// A file or directory by its name in an open directory, which costs less than the way along its
/// path.
struct Place {
    int directory;       ///< descriptor that outlives the place
    std::string path;    ///< the whole path, for messages
    std::size_t name_at; ///< where in the path the name begins

    /// A path that is its own name.
    explicit Place(std::string whole) : directory(AT_FDCWD), path(std::move(whole)), name_at(0) {}
    /// A name in the directory `in`, which is open as `opened`.
    Place(const Place& in, int opened, const std::string& name)
        : directory(opened), path(in.path + "/" + name), name_at(in.path.size() + 1)
    {
    }
    /// What calls with a directory's descriptor are given.
    const char* name() const { return path.c_str() + name_at; }
};

/// An open directory, null when it could not be opened.
using Directory = std::unique_ptr<DIR, int (*)(DIR*)>;

/// Opens the directory, with further flags of open(2); null with `errno` when that fails.
Directory open_directory(const Place& place, int flags = 0);

/// The names in the directory, in byte order, without "." and "..". Those that cannot be read are
/// missing, all of them for a null directory; a warning says so, unless there is no such directory.
/// All names are read before any is used, as removing entries would disturb the reading. `path` is
/// for the message; for a null directory `errno` says why it could not be opened.
std::vector<std::string> names_of(const Directory& directory, const std::string& path);

/// The same for the directory of that path.
std::vector<std::string> names_in(const std::string& path);
