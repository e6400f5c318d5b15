// Reading and writing of whole files. What takes the place of an older file appears whole or not at
// all: a build may be stopped at any instant.
#include "commonfunc/file_io.h"

#include "commonfunc/message.h"
#include "commonfunc/path_name.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace
{

/// Writes the text and closes the file; false when either fails, with `errno` set.
bool write_and_close(File file, const std::string& text)
{
    if (!file) {
        return false;
    }
    const bool written = std::fwrite(text.data(), 1, text.size(), file.get()) == text.size();
    return std::fclose(file.release()) == 0 && written;
}

Writing write_directly(const std::string& path, const std::string& text)
{
    File file = open_file(path, "we");
    if (!file) {
        return Writing::not_opened;
    }
    return write_and_close(std::move(file), text) ? Writing::done : Writing::failed;
}

/// Nothing is done when no file can be made beside.
Writing write_beside_and_rename(const std::string& path, const std::string& text, mode_t mode)
{
    std::string beside = path.substr(0, path.rfind('/') + 1) + ".lltwrapper-XXXXXX";
    const int fd = ::mkstemp(&beside[0]);
    if (fd < 0) {
        return Writing::not_opened;
    }
    ::fchmod(fd, mode); // some file systems have no modes
    const bool done = write_and_close(File(::fdopen(fd, "w"), &std::fclose), text) &&
                      std::rename(beside.c_str(), path.c_str()) == 0;
    if (!done) {
        const int error = errno;
        ::unlink(beside.c_str());
        errno = error;
    }
    return done ? Writing::done : Writing::failed;
}

} // namespace

File open_file(const std::string& path, const char* mode)
{
    struct stat info = {};
    if (::stat(path.c_str(), &info) == 0 && S_ISFIFO(info.st_mode)) {
        errno = ESPIPE;
        return {nullptr, &std::fclose};
    }
    return {std::fopen(path.c_str(), mode), &std::fclose};
}

bool write_all(int fd, const char* text, std::size_t size)
{
    for (std::size_t done = 0; done < size;) {
        const ssize_t n = ::write(fd, text + done, size - done);
        if (n < 0 && errno != EINTR) {
            return false;
        }
        done += n > 0 ? static_cast<std::size_t>(n) : 0;
    }
    return true;
}

mode_t process_umask()
{
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return mask;
}

Reading read_whole_file(const std::string& path, std::string& content)
{
    content.clear();
    struct stat info = {};
    if (::stat(path.c_str(), &info) != 0) {
        return ::access(path.c_str(), F_OK) == 0 ? Reading::not_opened : Reading::missing;
    }
    if (!S_ISREG(info.st_mode)) {
        return Reading::failed; // a FIFO would block, a directory opens but cannot be read
    }
    const File file = open_file(path, "rbe");
    if (!file) {
        return Reading::not_opened;
    }
    if (info.st_size <= 0) {
        return Reading::empty;
    }
    try {
        content.resize(static_cast<std::size_t>(info.st_size));
    } catch (const std::exception&) {
        return Reading::no_memory;
    }
    std::setvbuf(file.get(), nullptr, _IONBF, 0);
    if (std::fread(&content[0], 1, content.size(), file.get()) != content.size()) {
        content.clear();
        return Reading::failed;
    }
    return Reading::done;
}

Writing replace_file(const std::string& path, const std::string& text)
{
    struct stat info = {};
    const bool exists = ::lstat(path.c_str(), &info) == 0;
    const bool regular = ::stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode);
    Writing result = Writing::not_opened;
    if (!exists) {
        result = write_beside_and_rename(path, text, 0666 & ~process_umask());
    } else if (regular && ::access(path.c_str(), W_OK) == 0) {
        result = write_beside_and_rename(absolute_path(path), text, info.st_mode & 07777);
    }
    const bool only_beside_impossible = errno == EACCES || errno == EPERM || errno == EROFS;
    if (result == Writing::not_opened && (!regular || only_beside_impossible)) {
        result = write_directly(path, text);
    }
    if (result != Writing::done) {
        warn("cannot write '%s': %s; make room there or check its permissions", path.c_str(),
             std::strerror(errno));
    }
    return result;
}
