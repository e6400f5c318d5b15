// Streams made by fopencookie(3), whose cookie is the descriptor: those of fopen(3) lose data when
// a signal interrupts a read or write.
#include "commonfunc/descriptor.h"

#include <cstdint>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

int descriptor_of(void* cookie)
{
    return static_cast<int>(reinterpret_cast<std::intptr_t>(cookie));
}

ssize_t read_stream(void* cookie, char* out, std::size_t size)
{
    return uninterrupted([&] { return ::read(descriptor_of(cookie), out, size); });
}

ssize_t write_stream(void* cookie, const char* text, std::size_t size)
{
    return write_all(descriptor_of(cookie), text, size) ? static_cast<ssize_t>(size) : 0;
}

int seek_stream(void* cookie, off64_t* offset, int whence)
{
    *offset = ::lseek(descriptor_of(cookie), *offset, whence);
    return *offset < 0 ? -1 : 0;
}

int close_stream(void* cookie)
{
    // After an interruption the descriptor is closed all the same.
    return ::close(descriptor_of(cookie)) == 0 || errno == EINTR ? 0 : -1;
}

int flags_of(const std::string& mode)
{
    const bool updates = mode.find('+') != mode.npos;
    if (mode[0] == 'w') {
        return (updates ? O_RDWR : O_WRONLY) | O_CREAT | O_TRUNC;
    }
    return updates ? O_RDWR : O_RDONLY;
}

} // namespace

File open_file(const std::string& path, const char* mode)
{
    struct stat info = {};
    if (::stat(path.c_str(), &info) == 0 && S_ISFIFO(info.st_mode)) {
        errno = ESPIPE;
        return {nullptr, &std::fclose};
    }
    const int flags = flags_of(mode) | O_CLOEXEC;
    const int fd = uninterrupted([&] { return ::open(path.c_str(), flags, 0666); });
    File file = fd >= 0 ? open_descriptor(fd, mode) : File(nullptr, &std::fclose);
    if (fd >= 0 && !file) {
        ::close(fd);
    }
    return file;
}

File open_descriptor(int fd, const char* mode)
{
    // The number itself: nothing to allocate, and nothing that could fail.
    // NOLINTNEXTLINE(performance-no-int-to-ptr)
    void* const cookie = reinterpret_cast<void*>(static_cast<std::intptr_t>(fd));
    return {::fopencookie(cookie, mode, {read_stream, write_stream, seek_stream, close_stream}),
            &std::fclose};
}

bool write_all(int fd, const char* text, std::size_t size)
{
    for (std::size_t done = 0; done < size;) {
        const ssize_t n = uninterrupted([&] { return ::write(fd, text + done, size - done); });
        if (n < 0) {
            return false;
        }
        done += static_cast<std::size_t>(n);
    }
    return true;
}

mode_t process_umask()
{
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return mask;
}
