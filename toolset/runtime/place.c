/* Only calls that are safe in a signal handler. */
#define _FILE_OFFSET_BITS 64 /* large numbers of files and large files on 32-bit machines */

#include "place.h"

#include "contract/names.h"
#include "out.h"
#include "registry.h"
#include "secure.h"

#include <errno.h>
#include <fcntl.h>
#include <stdint.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

/* Bytes of the names in a file name. */
enum { MODULE_LENGTH = 150, BUID_LENGTH = 40 };

/* At most `length` bytes of the name, with only such as need no care in a file name. */
static void out_plain(struct out* out, const char* name, size_t length)
{
    static const char KEPT[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-.+";
    for (size_t i = 0; i < length && name[i] != '\0'; ++i) {
        const char plain[] = {strchr(KEPT, name[i]) != NULL ? name[i] : '_', '\0'};
        out_text(out, plain);
    }
}

/* The root is set when a module registers; empty where it had to be absolute, or is too long. In
 * secure execution it is one descriptor more that is open. */
int place_enter(struct place* place, const struct module* module)
{
    place->directory = AT_FDCWD;
    if (module->root[0] == '\0') {
        errno = is_secure() ? EDESTADDRREQ : ENAMETOOLONG;
        return 0;
    }
    if (is_secure()) {
        place->directory = secure_directory(module->root);
    }
    return place->directory != -1;
}

void place_leave(struct place* place)
{
    if (place->directory != AT_FDCWD) {
        const int saved = errno;
        close(place->directory);
        errno = saved;
    }
}

/* ROOT/START MODULE.BUID.HASH.NAME.lltcov END, without the root where its directory is open; 0,
 * with errno set, when that is too long. */
static int make_path(const struct place* place, char* to, const struct module* module,
                     const char* start, const char* name, const char* end)
{
    struct out out = {to, PATH_MAX, 0};
    if (place->directory == AT_FDCWD) {
        out_text(&out, module->root);
        out_text(&out, "/");
    }
    out_text(&out, start);
    out_plain(&out, module->name, MODULE_LENGTH);
    out_text(&out, ".");
    out_plain(&out, module->buid != NULL ? module->buid : "", BUID_LENGTH);
    out_text(&out, ".");
    for (int shift = 60; shift >= 0; shift -= 4) {
        const char digit[] = {"0123456789abcdef"[module->image.hash >> shift & 15], '\0'};
        out_text(&out, digit);
    }
    out_text(&out, ".");
    out_text(&out, name);
    out_text(&out, DUMP_SUFFIX);
    out_text(&out, end);
    errno = ENAMETOOLONG;
    return out_end(&out);
}

int place_name(struct place* place, const struct module* module, const char* name)
{
    return make_path(place, place->path, module, "", name, "") &&
           make_path(place, place->beside, module, ".", name, SPARE_SUFFIX);
}

/* Creates the directory of the file with its parents; the path is changed meanwhile. */
static void make_directories(char* file)
{
    for (char* at = file + 1; *at != '\0'; ++at) {
        if (*at == '/') {
            *at = '\0';
            mkdir(file, 0777);
            *at = '/';
        }
    }
}

static int open_again(const struct place* place, const char* file, int flags)
{
    int fd;
    do {
        fd = openat(place->directory, file, flags, 0666);
    } while (fd < 0 && errno == EINTR);
    return fd;
}

/* O_NOFOLLOW: whoever may write in the directory must not choose another file. */
int open_or_create(const struct place* place, char* file, int flags)
{
    flags |= O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NOCTTY;
    int fd = open_again(place, file, flags);
    if (fd < 0 && errno == ENOENT && place->directory == AT_FDCWD) {
        make_directories(file);
        fd = open_again(place, file, flags);
    }
    if (fd >= 0 && fd < 3) {
        const int higher = fcntl(fd, F_DUPFD_CLOEXEC, 3);
        const int error = errno;
        close(fd);
        errno = error;
        fd = higher;
    }
    if (fd >= 0 && is_secure()) {
        secure_mode(fd);
    }
    return fd;
}

size_t size_of_file(const struct image* image)
{
    return image->header_size + image->word_count * sizeof(uint64_t);
}

int place_write(const struct place* place, int fd, const struct image* image)
{
    const int is_written = write_all(fd, image->header, size_of_file(image));
    int error = errno;
    const int is_closed = close(fd) == 0;
    if (is_written && is_closed) {
        return 1;
    }
    error = is_written ? errno : error;
    unlinkat(place->directory, place->beside, 0);
    errno = error;
    return 0;
}
