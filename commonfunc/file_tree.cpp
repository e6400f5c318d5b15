// A copy of an instrumented source is a handful of small files, and an archive has thousands of
// sources: a shell and a tool for each would be most of an archive step.
#include "commonfunc/file_tree.h"

#include "commonfunc/file_io.h"
#include "commonfunc/message.h"
#include "commonfunc/path_name.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
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

/// True when nothing may be written there: through a link that names nothing, or, as opening it
/// would empty the source, into the source itself.
bool is_no_place_for(const struct stat& source, const std::string& destination)
{
    struct stat info = {};
    if (::lstat(destination.c_str(), &info) != 0) {
        return false; // mostly: there is nothing yet
    }
    if (S_ISLNK(info.st_mode) && ::stat(destination.c_str(), &info) != 0) {
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

bool copy_file(const std::string& source, const std::string& destination, const struct stat& info)
{
    if (is_no_place_for(info, destination)) {
        errno = EEXIST;
        return failed("copy to", destination);
    }
    const int from = uninterrupted([&] { return ::open(source.c_str(), O_RDONLY | O_CLOEXEC); });
    if (from < 0) {
        return failed("read", source);
    }
    // An existing destination keeps its mode and identity; one that cannot be opened is replaced.
    const auto open_copy = [&](int flag) {
        const int flags = O_WRONLY | O_CREAT | O_CLOEXEC | flag;
        const mode_t mode = info.st_mode & 0777;
        return uninterrupted([&] { return ::open(destination.c_str(), flags, mode); });
    };
    int to = open_copy(O_TRUNC);
    if (to < 0) {
        const int error = errno;
        to = ::unlink(destination.c_str()) == 0 ? open_copy(O_EXCL) : -1;
        errno = to < 0 ? error : errno;
    }
    bool done = to >= 0 && copy_bytes(from, to, info.st_size);
    ::close(from);
    done = (to < 0 || ::close(to) == 0 || errno == EINTR) && done;
    return done || failed("copy to", destination);
}

bool copy_link(const std::string& source, const std::string& destination)
{
    std::string target(PATH_MAX, '\0');
    const ssize_t length = ::readlink(source.c_str(), &target[0], target.size());
    if (length < 0) {
        return failed("read", source);
    }
    target.resize(static_cast<std::size_t>(length));
    ::unlink(destination.c_str());
    return ::symlink(target.c_str(), destination.c_str()) == 0 || failed("create", destination);
}

/// The directories, by device and number, into which one copy has put something.
using Filled = std::set<std::pair<dev_t, ino_t>>;

bool copy_entry(const std::string& source, const std::string& destination, Filled& filled);

bool copy_directory(const std::string& source, const std::string& destination,
                    const struct stat& info, Filled& filled)
{
    if (filled.count({info.st_dev, info.st_ino}) != 0) {
        warn("the directory '%s' is not copied into itself; name a destination outside of it",
             source.c_str());
        return false;
    }
    const mode_t mode = (info.st_mode & 0777) | S_IRWXU;
    const bool made = uninterrupted([&] { return ::mkdir(destination.c_str(), mode); }) == 0;
    const int error = made ? 0 : errno;
    struct stat target = {};
    if (::lstat(destination.c_str(), &target) != 0 || !S_ISDIR(target.st_mode)) {
        errno = error;
        return failed("create", destination);
    }
    filled.insert({target.st_dev, target.st_ino});
    bool done = true;
    for (const std::string& name : names_in(source)) {
        done = copy_entry(source + "/" + name, destination + "/" + name, filled) && done;
    }
    if (made) {
        ::chmod(destination.c_str(), info.st_mode & 01777 & ~process_umask());
    }
    return done;
}

bool copy_entry(const std::string& source, const std::string& destination, Filled& filled)
{
    struct stat info = {};
    if (::lstat(source.c_str(), &info) != 0) {
        return failed("read", source);
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
    ::unlink(destination.c_str());
    return ::mknod(destination.c_str(), info.st_mode & ~process_umask(), info.st_rdev) == 0 ||
           failed("create", destination);
}

void tell_unless_gone(int result, const std::string& path)
{
    if (result != 0 && errno != ENOENT) {
        failed("remove", path);
    }
}

} // namespace

std::vector<std::string> names_in(const std::string& directory)
{
    std::vector<std::string> names;
    const int fd = uninterrupted(
        [&] { return ::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); });
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(fd < 0 ? nullptr : ::fdopendir(fd),
                                                     &::closedir);
    if (fd >= 0 && !stream) {
        ::close(fd);
        errno = ENOMEM;
    }
    errno = stream ? 0 : errno;
    while (const dirent* entry = stream ? ::readdir(stream.get()) : nullptr) {
        if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0) {
            names.emplace_back(entry->d_name);
        }
        errno = 0;
    }
    if (errno != 0 && errno != ENOENT && errno != ENOTDIR) {
        warn("the directory '%s' is not read: %s; what it holds is passed by", directory.c_str(),
             std::strerror(errno));
    }
    std::sort(names.begin(), names.end());
    return names;
}

void remove_tree(const std::string& path)
{
    const std::string last = base_name(path);
    struct stat info = {};
    if (last == "." || last == ".." || ::lstat(path.c_str(), &info) != 0) {
        return;
    }
    if (!S_ISDIR(info.st_mode)) {
        tell_unless_gone(::unlink(path.c_str()), path);
        return;
    }
    for (const std::string& name : names_in(path)) {
        remove_tree(path + "/" + name);
    }
    // A directory that still holds something was told of by what it holds.
    const int result = ::rmdir(path.c_str());
    tell_unless_gone(errno == ENOTEMPTY ? 0 : result, path);
}

void remove_entries(const std::string& directory, const std::string& start)
{
    for (const std::string& name : names_in(directory)) {
        const bool hidden = name[0] == '.' && start.substr(0, 1) != ".";
        if (!hidden && name.compare(0, start.size(), start) == 0) {
            remove_tree(directory + "/" + name);
        }
    }
}

bool copy_tree(const std::string& source, const std::string& destination)
{
    Filled filled;
    struct stat info = {};
    if (::stat(destination.c_str(), &info) != 0 || !S_ISDIR(info.st_mode)) {
        return copy_entry(source, destination, filled);
    }
    const std::string name = base_name(source.substr(0, source.find_last_not_of('/') + 1));
    return copy_entry(source, name == ".." ? destination : destination + "/" + name, filled);
}
