// A file that takes the place of an older one appears whole or not at all: a build may be stopped
// at any instant. The file beside has a fixed name, so that the next writer takes over what a
// killed one left; while it is written it is locked, so that two writers of one file take turns.
#include "commonfunc/file_replace.h"

#include "commonfunc/descriptor.h"
#include "commonfunc/message.h"
#include "commonfunc/path_name.h"

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

/// How often a file beside is opened anew because another writer renamed or removed it.
constexpr int MAX_ATTEMPTS = 1000;

/// Signals wait until the end of its life, so that none ends the program between the making of a
/// file and its renaming.
class SignalsWait
{
public:
    SignalsWait()
    {
        sigset_t all;
        ::sigfillset(&all);
        ::sigprocmask(SIG_BLOCK, &all, &before_);
    }
    ~SignalsWait() { ::sigprocmask(SIG_SETMASK, &before_, nullptr); }
    SignalsWait(const SignalsWait&) = delete;
    SignalsWait& operator=(const SignalsWait&) = delete;

private:
    sigset_t before_;
};

std::string directory_of(const std::string& path)
{
    return path.substr(0, path.rfind('/') + 1);
}

std::string path_beside(const std::string& path)
{
    const std::string start = ".lltwrapper-";
    return directory_of(path) + start + base_name(path).substr(0, NAME_MAX - start.size());
}

/// What stands under the path of an opened file.
enum class Beside {
    own,     ///< that file
    foreign, ///< that file, which is another user's or has further names
    other    ///< another file, or none: another writer has been there in the meantime
};

Beside look_beside(int fd, const std::string& path)
{
    struct stat opened = {};
    struct stat named = {};
    if (::fstat(fd, &opened) != 0 || ::lstat(path.c_str(), &named) != 0 ||
        opened.st_dev != named.st_dev || opened.st_ino != named.st_ino) {
        return Beside::other;
    }
    const bool own = S_ISREG(named.st_mode) && named.st_nlink == 1 && named.st_uid == ::geteuid();
    return own ? Beside::own : Beside::foreign;
}

int open_without_links(const std::string& path, int flags)
{
    flags |= O_WRONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
    return uninterrupted([&] { return ::open(path.c_str(), flags, 0600); });
}

/// Opens the file of that path, empty and locked; -1 on failure. What is none of ours is removed.
int open_locked(const std::string& path)
{
    for (int attempts = 0; attempts < MAX_ATTEMPTS; ++attempts) {
        int fd = open_without_links(path, O_CREAT | O_EXCL);
        const bool made = fd >= 0;
        if (!made && errno != EEXIST) {
            return -1;
        }
        fd = made ? fd : open_without_links(path, 0);
        if (fd < 0) {
            if (errno == EMFILE || errno == ENFILE ||
                (errno != ENOENT && ::unlink(path.c_str()) != 0)) {
                return -1;
            }
            continue;
        }
        uninterrupted([&] { return ::flock(fd, LOCK_EX); }); // some file systems have no locks
        const Beside beside = look_beside(fd, path);
        if ((beside == Beside::own || (made && beside == Beside::foreign)) &&
            ::ftruncate(fd, 0) == 0) {
            return fd;
        }
        ::close(fd);
        if (beside != Beside::other && ::unlink(path.c_str()) != 0) {
            return -1;
        }
    }
    errno = EBUSY;
    return -1;
}

/// Gives the new file owner and group of the old one, if there is one; false when the process may
/// not do that.
bool keep_owner(int fd, const struct stat* old)
{
    struct stat made = {};
    return old == nullptr || ::fstat(fd, &made) != 0 ||
           (made.st_uid == old->st_uid && made.st_gid == old->st_gid) ||
           ::fchown(fd, old->st_uid, old->st_gid) == 0;
}

/// What writes the content to a descriptor, which it leaves open; false with `errno` on failure.
using WriteTo = std::function<bool(int fd)>;

/// Writes, and closes another descriptor of the file: some systems tell only then that they could
/// not keep what was written, and the file itself stays open and locked.
bool write_and_flush(int fd, const WriteTo& write)
{
    if (!write(fd)) {
        return false;
    }
    const int other = ::dup(fd);
    return other < 0 || ::close(other) == 0 || errno == EINTR;
}

/// Does nothing when no file can be made beside. `old` is the file that is replaced, null for none.
Writing write_beside_and_rename(const std::string& path, const WriteTo& write,
                                const struct stat* old)
{
    const SignalsWait wait;
    const std::string beside = path_beside(path);
    const int fd = open_locked(beside);
    if (fd < 0) {
        return Writing::not_opened;
    }
    const bool kept = keep_owner(fd, old);
    const mode_t mode = old == nullptr ? 0666 & ~process_umask() : old->st_mode;
    ::fchmod(fd, mode & (kept ? 07777 : 0777)); // some file systems have no modes
    const bool done = write_and_flush(fd, write) &&
                      uninterrupted([&] { return std::rename(beside.c_str(), path.c_str()); }) == 0;
    const int error = errno;
    if (!done) {
        ::unlink(beside.c_str());
    }
    ::close(fd);
    if (done && !kept) {
        warn(
            "'%s' belonged to user %u and group %u, which the new one may not: 'chown %u:%u' as root gives it back; build as one user",
            path.c_str(), old->st_uid, old->st_gid, old->st_uid, old->st_gid);
    }
    errno = error;
    return done ? Writing::done : Writing::failed;
}

Writing write_directly(const std::string& path, const WriteTo& write)
{
    struct stat info = {};
    if (::stat(path.c_str(), &info) == 0 && S_ISFIFO(info.st_mode)) {
        errno = ESPIPE; // it would block
        return Writing::not_opened;
    }
    const int flags = O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC;
    const int fd = uninterrupted([&] { return ::open(path.c_str(), flags, 0666); });
    if (fd < 0) {
        return Writing::not_opened;
    }
    const bool written = write(fd);
    const int error = errno;
    ::close(fd);
    errno = error;
    return written ? Writing::done : Writing::failed;
}

/// What helps against a refusal: of the file, or of its directory when there is none or it is
/// writable.
std::string cure_of_refusal(const std::string& path)
{
    struct stat info = {};
    std::string refused = path;
    if (::access(path.c_str(), W_OK) == 0 || ::lstat(path.c_str(), &info) != 0) {
        refused = directory_of(path).empty() ? "." : directory_of(path);
        if (::stat(refused.c_str(), &info) != 0) {
            return "check the permissions of the directories above it";
        }
    }
    const uid_t user = ::geteuid();
    if (info.st_uid == user) {
        return "run 'chmod u+rwX " + refused + "' and build with a umask like 022";
    }
    return "it belongs to user " + std::to_string(info.st_uid) + ": run 'chown -R " +
           std::to_string(user) + " " + directory_of(path) + "' as root";
}

std::string cure_of(const std::string& path, int error)
{
    switch (error) {
    case EACCES:
    case EPERM:
        return cure_of_refusal(path);
    case ENOSPC:
    case EDQUOT:
        return "make room there";
    case EFBIG:
        return "raise the limit on the size of files (ulimit -f)";
    case EMFILE:
    case ENFILE:
        return "raise the limit on open files (ulimit -n)";
    default:
        return "check that its directory is there, and try again";
    }
}

Writing replace_by(const std::string& path, const WriteTo& write)
{
    struct stat old = {};
    const bool exists = ::lstat(path.c_str(), &old) == 0;
    const bool is_link = exists && S_ISLNK(old.st_mode);
    const bool regular = ::stat(path.c_str(), &old) == 0 && S_ISREG(old.st_mode);
    Writing result = Writing::not_opened;
    if (!exists) {
        result = write_beside_and_rename(path, write, nullptr);
    } else if (regular && ::access(path.c_str(), W_OK) == 0) {
        result = write_beside_and_rename(is_link ? absolute_path(path) : path, write, &old);
    }
    const bool only_beside_impossible = errno == EACCES || errno == EPERM || errno == EROFS;
    if (result == Writing::not_opened && (!regular || only_beside_impossible)) {
        result = write_directly(path, write);
    }
    if (result != Writing::done) {
        warn_not_written(path);
    }
    return result;
}

} // namespace

Writing replace_file(const std::string& path, const std::string& text)
{
    return replace_by(path, [&](int fd) { return write_all(fd, text.data(), text.size()); });
}

Writing replace_file(const std::string& path, const WriteContent& write)
{
    return replace_by(path, [&](int fd) {
        const int other = ::fcntl(fd, F_DUPFD_CLOEXEC, 0);
        File file = other >= 0 ? open_descriptor(other, "w") : File(nullptr, &std::fclose);
        if (!file) {
            const int error = other >= 0 ? ENOMEM : errno;
            ::close(other);
            errno = error;
            return false;
        }
        const bool written = write(file.get());
        return std::fflush(file.get()) == 0 && written;
    });
}

void warn_not_written(const std::string& path)
{
    const int error = errno;
    warn("cannot write '%s': %s; %s", path.c_str(), std::strerror(error),
         cure_of(path, error).c_str());
}
