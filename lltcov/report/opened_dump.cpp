// Programs exchange a dump file with the one that they write beside it, so that a file which was
// opened may be written anew while it is read. Who holds a lock of it keeps them away: they take
// another file. A writer that was stopped is not waited for.
#include "lltcov/report/opened_dump.h"

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <fcntl.h>
#include <memory>
#include <stdexcept>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace
{

/// An open file of which bytes are read.
class OpenFile
{
public:
    explicit OpenFile(const std::string& path)
    {
        constexpr int TRIES = 1000;
        for (int i = 0; i < TRIES && !lock(path); ++i) {
            ::usleep(1000);
        }
    }
    ~OpenFile() { close(); }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    std::uint64_t size() const { return static_cast<std::uint64_t>(opened_.st_size); }

    void read(std::uint64_t offset, char* to, std::size_t size) const
    {
        while (size > 0) {
            const ssize_t got = ::pread(file_, to, size, static_cast<off_t>(offset));
            if (got == 0) {
                throw std::runtime_error("it became shorter meanwhile");
            }
            if (got < 0 && errno != EINTR) {
                fail();
            }
            const std::size_t bytes = got > 0 ? static_cast<std::size_t>(got) : 0;
            to += bytes;
            offset += bytes;
            size -= bytes;
        }
    }

private:
    [[noreturn]] static void fail()
    {
        throw std::runtime_error(std::generic_category().message(errno));
    }

    void close() const
    {
        if (file_ >= 0) {
            ::close(file_);
        }
    }

    /// True when the file of that path is locked, or cannot be.
    bool lock(const std::string& path)
    {
        struct stat named = {};
        close();
        file_ = -1;
        if (::stat(path.c_str(), &named) != 0) {
            fail();
        }
        if (S_ISREG(named.st_mode)) { // others may do something when they are opened
            file_ = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
            if (file_ < 0 || ::fstat(file_, &opened_) != 0) {
                fail();
            }
        }
        if (file_ < 0 || !S_ISREG(opened_.st_mode)) {
            throw std::runtime_error("it is no regular file");
        }
        if (::flock(file_, LOCK_SH | LOCK_NB) != 0) {
            return errno != EWOULDBLOCK && errno != EINTR;
        }
        return ::stat(path.c_str(), &named) == 0 && opened_.st_ino == named.st_ino &&
               opened_.st_dev == named.st_dev;
    }

    int file_ = -1;
    struct stat opened_ = {};
};

} // namespace

DumpReader open_dump(const std::string& path)
{
    const auto file = std::make_shared<const OpenFile>(path);
    return {file->size(), [file](std::uint64_t offset, char* to, std::size_t size) {
                file->read(offset, to, size);
            }};
}
