// Only regular files are opened, so that nothing blocks. A file is read up to the size that it had
// when it was opened.
#include "commonfunc/file_io.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <fcntl.h>
#include <new>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

/// A regular file opened for reading.
struct Opened {
    int fd = -1;
    std::size_t size = 0;
    Reading reading = Reading::failed; ///< `done` when it is open

    Opened() = default;
    Opened(const Opened&) = delete;
    Opened& operator=(const Opened&) = delete;
    ~Opened()
    {
        if (fd >= 0) {
            const int error = errno;
            ::close(fd);
            errno = error;
        }
    }
};

void open_for_reading(const std::string& path, Opened& file)
{
    struct stat info = {};
    if (::stat(path.c_str(), &info) != 0) {
        const int error = errno;
        const bool exists = ::access(path.c_str(), F_OK) == 0;
        file.reading = exists ? Reading::not_opened : Reading::missing;
        errno = error;
        return;
    }
    errno = S_ISDIR(info.st_mode) ? EISDIR : 0;
    if (!S_ISREG(info.st_mode)) {
        return; // a FIFO would block, a directory opens but cannot be read
    }
    file.fd = uninterrupted(
        [&] { return ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY); });
    if (file.fd < 0) {
        file.reading = Reading::not_opened;
    } else if (::fstat(file.fd, &info) == 0 && S_ISREG(info.st_mode)) {
        errno = 0;
        file.size = static_cast<std::size_t>(info.st_size);
        file.reading = file.size > 0 ? Reading::done : Reading::empty;
    }
}

/// False on an error, and, with `errno` 0, when the file has become shorter and ends too early.
bool read_exactly(int fd, char* out, std::size_t size)
{
    for (std::size_t done = 0; done < size;) {
        const ssize_t n = uninterrupted([&] { return ::read(fd, out + done, size - done); });
        if (n <= 0) {
            errno = n == 0 ? 0 : errno;
            return false;
        }
        done += static_cast<std::size_t>(n);
    }
    return true;
}

Reading take_pieces(const Opened& file, std::string& piece, const TakePiece& take)
{
    for (std::size_t left = file.size; left > 0;) {
        const std::size_t size = std::min(left, piece.size());
        if (!read_exactly(file.fd, &piece[0], size)) {
            return Reading::failed;
        }
        if (!take(piece.data(), size)) {
            break;
        }
        left -= size;
    }
    return Reading::done;
}

} // namespace

Reading read_whole_file(const std::string& path, std::string& content)
{
    content.clear();
    const Reading reading = read_file_into(path, [&](std::size_t size) -> char* {
        try {
            content.resize(size);
            return &content[0];
        } catch (const std::exception&) {
            return nullptr;
        }
    });
    if (reading != Reading::done) {
        content.clear();
    }
    return reading;
}

Reading read_file_into(const std::string& path, const RoomFor& room)
{
    Opened file;
    open_for_reading(path, file);
    if (file.reading != Reading::done) {
        return file.reading;
    }
    char* const out = room(file.size);
    if (out == nullptr) {
        errno = ENOMEM;
        return Reading::no_memory;
    }
    return read_exactly(file.fd, out, file.size) ? Reading::done : Reading::failed;
}

const char* why_not_read()
{
    return errno != 0 ? std::strerror(errno) : "it is no regular file, or became shorter meanwhile";
}

bool means_absent(int error)
{
    return error == ENOENT || error == ENOTDIR || error == ENAMETOOLONG || error == ELOOP;
}

Reading read_in_pieces(const std::string& path, const TakePiece& take, std::size_t piece_size)
{
    Opened file;
    open_for_reading(path, file);
    if (file.reading != Reading::done) {
        return file.reading;
    }
    try {
        std::string piece(std::min(file.size, piece_size), '\0');
        return take_pieces(file, piece, take);
    } catch (const std::bad_alloc&) {
        errno = ENOMEM;
        return Reading::no_memory;
    }
}
