// The lock is on the directory itself, so that it leaves no file behind.
#include "lltld/work_area_lock.h"

#include "commonfunc/message.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <time.h>
#include <unistd.h>

namespace
{

constexpr int POLLS_PER_SECOND = 50;
constexpr int SAY_AFTER_SECONDS = 10;
constexpr int GIVE_UP_AFTER_SECONDS = 600;

bool held_by_another(int fd)
{
    return ::flock(fd, LOCK_EX | LOCK_NB) != 0 && (errno == EWOULDBLOCK || errno == EINTR);
}

} // namespace

void lock_work_area(const std::string& directory)
{
    // Stays open: the end of the process, or the next work area, releases the lock.
    static int fd = -1;
    if (fd >= 0) {
        ::close(fd);
    }
    fd = ::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) {
        return; // not created; that has been reported
    }
    for (int polls = 0; held_by_another(fd); ++polls) {
        if (polls == SAY_AFTER_SECONDS * POLLS_PER_SECOND) {
            warn("waiting for another archive step in '%s'", directory.c_str());
        }
        if (polls == GIVE_UP_AFTER_SECONDS * POLLS_PER_SECOND) {
            warn(
                "going on although another archive step still works in '%s': check that no archiver hangs there",
                directory.c_str());
            return;
        }
        const timespec pause = {0, 1000000000 / POLLS_PER_SECOND};
        ::nanosleep(&pause, nullptr);
    }
}
