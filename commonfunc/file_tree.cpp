// A copy of an instrumented source is a handful of small files, and an archive has thousands of
// sources: a shell and a tool for each would be most of an archive step.
#include "commonfunc/file_tree.h"

#include "commonfunc/file_io.h"
#include "commonfunc/message.h"
#include "commonfunc/path_name.h"

#include <cerrno>
#include <climits>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <set>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace
{

bool failed(const char* what, const std::string& path)
{
    warn("cannot %s '%s': %s; the step is incomplete, mend that and run it again", what,
         path.c_str(), std::strerror(errno));
    return false;
}

/// True when nothing may be written to what is there: through a link that names nothing, or, as
/// opening it would empty the source, into the source itself.
bool is_no_place_for(const struct stat& source, const Place& there)
{
    struct stat info = {};
    if (::fstatat(there.directory, there.name(), &info, 0) != 0) {
        return true;
    }
    return source.st_dev == info.st_dev && source.st_ino == info.st_ino;
}

bool copy_through_buffer(int from, int to)
{
    std::string buffer(65536, '\0'); // a stack may be small
    for (;;) {
        const ssize_t got = uninterrupted([&] { return ::read(from, &buffer[0], buffer.size()); });
        if (got <= 0) {
            return got == 0;
        }
        if (!write_all(to, buffer.data(), static_cast<std::size_t>(got))) {
            return false;
        }
    }
}

/// `size` is what the file is said to have; files of the kernel's own say 0.
bool copy_bytes(int from, int to, off_t size)
{
    constexpr std::size_t PIECE = std::size_t{1} << 30;
    bool is_begun = false;
    while (size > 0) {
        const ssize_t copied =
            uninterrupted([&] { return ::copy_file_range(from, nullptr, to, nullptr, PIECE, 0); });
        if (copied == 0 && is_begun) {
            return true;
        }
        if (copied <= 0) {
            break; // not between these two file systems, or a failure that the other way meets too
        }
        is_begun = true;
        size = copied < size ? size - copied : 0;
    }
    return (is_begun && size == 0) || copy_through_buffer(from, to);
}

/// Opens the copy, which mostly is new. An existing one keeps its mode and identity; one that
/// cannot be opened is replaced.
int open_copy(const Place& place, const struct stat& source)
{
    const auto open_as = [&](int flag) {
        const int flags = O_WRONLY | O_CREAT | O_CLOEXEC | flag;
        const mode_t mode = source.st_mode & 0777;
        return uninterrupted([&] { return ::openat(place.directory, place.name(), flags, mode); });
    };
    int fd = open_as(O_EXCL);
    if (fd >= 0 || errno != EEXIST) {
        return fd;
    }
    if (is_no_place_for(source, place)) {
        errno = EEXIST;
        return -1;
    }
    fd = open_as(O_TRUNC);
    if (fd < 0) {
        const int error = errno;
        fd = ::unlinkat(place.directory, place.name(), 0) == 0 ? open_as(O_EXCL) : -1;
        errno = fd < 0 ? error : errno;
    }
    return fd;
}

bool copy_file(const Place& source, const Place& destination, const struct stat& info)
{
    const int from = uninterrupted(
        [&] { return ::openat(source.directory, source.name(), O_RDONLY | O_CLOEXEC); });
    if (from < 0) {
        return failed("read", source.path);
    }
    const int to = open_copy(destination, info);
    bool done = to >= 0 && copy_bytes(from, to, info.st_size);
    ::close(from);
    done = (to < 0 || ::close(to) == 0 || errno == EINTR) && done;
    return done || failed("copy to", destination.path);
}

bool copy_link(const Place& source, const Place& destination)
{
    std::string target(PATH_MAX, '\0');
    const ssize_t length = ::readlinkat(source.directory, source.name(), &target[0], target.size());
    if (length < 0) {
        return failed("read", source.path);
    }
    target.resize(static_cast<std::size_t>(length));
    ::unlinkat(destination.directory, destination.name(), 0);
    return ::symlinkat(target.c_str(), destination.directory, destination.name()) == 0 ||
           failed("create", destination.path);
}

/// The directories, by device and number, into which one copy has put something.
using Filled = std::set<std::pair<dev_t, ino_t>>;

bool copy_entry(const Place& source, const Place& destination, Filled& filled);

/// What the source holds, into the opened directory.
bool copy_entries(const Place& source, const Place& destination, int opened, Filled& filled)
{
    const Directory stream = open_directory(source, O_NOFOLLOW);
    bool done = true;
    for (const std::string& name : names_of(stream, source.path)) {
        done = copy_entry({source, ::dirfd(stream.get()), name}, {destination, opened, name},
                          filled) &&
               done;
    }
    return done;
}

bool copy_directory(const Place& source, const Place& destination, const struct stat& info,
                    Filled& filled)
{
    if (filled.count({info.st_dev, info.st_ino}) != 0) {
        warn("the directory '%s' is not copied into itself; name a destination outside of it",
             source.path.c_str());
        return false;
    }
    const mode_t mode = (info.st_mode & 0777) | S_IRWXU;
    const bool made = uninterrupted([&] {
                          return ::mkdirat(destination.directory, destination.name(), mode);
                      }) == 0;
    const int error = made ? 0 : errno;
    const int opened = uninterrupted([&] {
        return ::openat(destination.directory, destination.name(),
                        O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    });
    struct stat target = {};
    if (opened < 0 || ::fstat(opened, &target) != 0) {
        errno = made ? errno : error;
        return failed("create", destination.path);
    }
    filled.insert({target.st_dev, target.st_ino});
    const bool done = copy_entries(source, destination, opened, filled);
    ::close(opened);
    if (made && mode != (info.st_mode & 01777)) {
        ::chmod(destination.path.c_str(), info.st_mode & 01777 & ~process_umask());
    }
    return done;
}

bool copy_entry(const Place& source, const Place& destination, Filled& filled)
{
    struct stat info = {};
    if (::fstatat(source.directory, source.name(), &info, AT_SYMLINK_NOFOLLOW) != 0) {
        return failed("read", source.path);
    }
    if (S_ISDIR(info.st_mode)) {
        return copy_directory(source, destination, info, filled);
    }
    if (S_ISLNK(info.st_mode)) {
        return copy_link(source, destination);
    }
    if (S_ISREG(info.st_mode)) {
        return copy_file(source, destination, info);
    }
    ::unlinkat(destination.directory, destination.name(), 0);
    return ::mknodat(destination.directory, destination.name(), info.st_mode & ~process_umask(),
                     info.st_rdev) == 0 ||
           failed("create", destination.path);
}

/// True when there is, or can be, no file of the name that a call refused.
bool is_gone()
{
    return errno == ENOENT || errno == ENOTDIR || errno == ENAMETOOLONG;
}

bool is_directory(const Place& place)
{
    struct stat info = {};
    return ::fstatat(place.directory, place.name(), &info, AT_SYMLINK_NOFOLLOW) == 0 &&
           S_ISDIR(info.st_mode);
}

bool remove_entry(const Place& place)
{
    if (::unlinkat(place.directory, place.name(), 0) == 0 || is_gone()) {
        return true;
    }
    const int error = errno;
    if (error != EISDIR && !is_directory(place)) {
        errno = error;
        return failed("remove", place.path);
    }
    const Directory stream = open_directory(place, O_NOFOLLOW);
    for (const std::string& name : names_of(stream, place.path)) {
        remove_entry({place, ::dirfd(stream.get()), name});
    }
    if (::unlinkat(place.directory, place.name(), AT_REMOVEDIR) == 0 || is_gone()) {
        return true;
    }
    // Why a directory still holds something was reported with what it holds.
    return errno != ENOTEMPTY && failed("remove", place.path);
}

} // namespace

void remove_tree(const std::string& path)
{
    const std::string last = base_name(path);
    if (last != "." && last != "..") {
        remove_entry(Place(path));
    }
}

bool remove_entries(const std::string& directory, const std::string& start)
{
    bool done = true;
    const Place place(directory);
    const Directory stream = open_directory(place);
    for (const std::string& name : names_of(stream, directory)) {
        const bool hidden = name[0] == '.' && start.substr(0, 1) != ".";
        if (!hidden && name.compare(0, start.size(), start) == 0) {
            done = remove_entry({place, ::dirfd(stream.get()), name}) && done;
        }
    }
    return done;
}

bool copy_tree(const std::string& source, const std::string& destination)
{
    Filled filled;
    struct stat info = {};
    if (::stat(destination.c_str(), &info) != 0 || !S_ISDIR(info.st_mode)) {
        return copy_entry(Place(source), Place(destination), filled);
    }
    const std::string name = base_name(source.substr(0, source.find_last_not_of('/') + 1));
    return copy_entry(Place(source), Place(name == ".." ? destination : destination + "/" + name),
                      filled);
}
