/* A path is followed directory by directory, each looked up in the one that is open: so nobody can
 * put a link into it meanwhile. */
#include "secure.h"

#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <string.h>
#include <sys/auxv.h>
#include <sys/stat.h>
#include <unistd.h>

enum {
    STEP = O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC,
    FILE_MODE = 0644,
    DIRECTORY_MODE = 0755
};

int is_secure(void)
{
    return getauxval(AT_SECURE) != 0;
}

/* Opens the directory of that name, which is made where it is missing. */
static int enter(int at, const char* name)
{
    struct stat state;
    int fd = openat(at, name, STEP);
    if (fd < 0 && errno == ENOENT && (mkdirat(at, name, DIRECTORY_MODE) == 0 || errno == EEXIST)) {
        fd = openat(at, name, STEP);
    }
    if (fd < 0 && errno == ENOTDIR) {
        const int is_link =
            fstatat(at, name, &state, AT_SYMLINK_NOFOLLOW) == 0 && S_ISLNK(state.st_mode);
        errno = is_link ? ELOOP : ENOTDIR;
    }
    return fd;
}

int secure_directory(const char* path)
{
    int at = open("/", STEP);
    while (at >= 0 && *path != '\0') {
        char name[NAME_MAX + 1];
        const size_t length = strcspn(path, "/");
        if (length > NAME_MAX) {
            close(at);
            errno = ENAMETOOLONG;
            return -1;
        }
        if (length > 0) {
            memcpy(name, path, length);
            name[length] = '\0';
            const int next = enter(at, name);
            const int error = errno;
            close(at);
            errno = error;
            at = next;
        }
        path += length + (path[length] == '/');
    }
    return at;
}

void secure_mode(int fd)
{
    const int saved = errno;
    fchmod(fd, FILE_MODE); /* of a file of another user it stays */
    errno = saved;
}
