// A directory is read to its end at once, so that what is done with the names cannot disturb it.
#include "commonfunc/directory.h"

#include "commonfunc/descriptor.h"
#include "commonfunc/message.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <unistd.h>

Directory open_directory(const Place& place, int flags)
{
    flags |= O_RDONLY | O_DIRECTORY | O_CLOEXEC;
    const int fd = uninterrupted([&] { return ::openat(place.directory, place.name(), flags); });
    Directory stream(fd < 0 ? nullptr : ::fdopendir(fd), &::closedir);
    if (fd >= 0 && !stream) {
        ::close(fd);
        errno = ENOMEM;
    }
    return stream;
}

std::vector<std::string> names_of(const Directory& directory, const std::string& path)
{
    std::vector<std::string> names;
    errno = directory ? 0 : errno;
    while (const dirent* entry = directory ? ::readdir(directory.get()) : nullptr) {
        if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0) {
            names.emplace_back(entry->d_name);
        }
        errno = 0;
    }
    if (errno != 0 && errno != ENOENT && errno != ENOTDIR) {
        warn("the directory '%s' is not read: %s; what it holds is passed by", path.c_str(),
             std::strerror(errno));
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::vector<std::string> names_in(const std::string& path)
{
    return names_of(open_directory(Place(path)), path);
}
