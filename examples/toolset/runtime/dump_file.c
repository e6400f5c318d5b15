/* Who has locked a file (a slot) reads it, adds its counts, writes the sum beside it and renames
 * that over the slot. So a file is whole at any time, whoever is killed. The lock ends with the
 * process; what a killed one left beside the slot is removed by the next that has the lock.
 *
 * A child that another thread starts without the fork handlers (vfork, posix_spawn) may inherit the
 * descriptor and with it the lock, until its exec. That does no harm: the lock is on the file that
 * was replaced, and who comes later opens the new one. */
#define _FILE_OFFSET_BITS 64 /* large numbers of files and large files on 32-bit machines */

#include "dump_file.h"

#include "out.h"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <string.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <time.h>
#include <unistd.h>

enum {
    SLOTS = 16,          /* files that runs share */
    MODULE_LENGTH = 150, /* bytes of the module in a file name */
    BUID_LENGTH = 40,    /* likewise */
    MAX_COUNTER = 1000000,
    PATIENCE = 2 /* seconds to wait for a slot when all are busy */
};

/* What comes of a slot. */
enum outcome {
    WRITTEN,
    BUSY,  /* another process has it */
    UNFIT, /* it is damaged or of another user: the next one may do */
    FAILED /* nor would the next one do */
};

/* Static, since a handler may run on a small stack; the lock guards them. */
static char path[PATH_MAX];
static char beside[PATH_MAX];

/* --- names */

/* At most `length` bytes of the name, with only such as need no care in a file name. */
static void out_plain(struct out* out, const char* name, size_t length)
{
    static const char KEPT[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-.+";
    for (size_t i = 0; name[i] != '\0' && i < length; ++i) {
        const char plain[] = {strchr(KEPT, name[i]) != NULL ? name[i] : '_', '\0'};
        out_text(out, plain);
    }
}

/* ROOT/START MODULE.BUID.HASH.PLACE.lltcov END; 0, with errno set, when that is too long or there
 * is no root. */
static int make_path(char* to, const struct module* module, const char* start, const char* place,
                     const char* end)
{
    struct out out = {to, PATH_MAX, 0};
    out_text(&out, module->root);
    out_text(&out, "/");
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
    out_text(&out, place);
    out_text(&out, ".lltcov");
    out_text(&out, end);
    errno = ENAMETOOLONG;
    return out_end(&out) && module->root[0] != '\0';
}

static int make_paths(const struct module* module, const char* place)
{
    return make_path(path, module, "", place, "") && make_path(beside, module, ".", place, ".tmp");
}

/* --- files */

/* Creates the directory of the file with its parents. */
static void make_directories(const char* file)
{
    static char directory[PATH_MAX];
    for (size_t i = 0; file[i] != '\0'; ++i) {
        if (i > 0 && file[i] == '/') {
            directory[i] = '\0';
            mkdir(directory, 0777);
        }
        directory[i] = file[i];
    }
}

/* Opens a file that may be missing, with its directory, and no link to somewhere else. The
 * descriptor is above those of the standard streams, which the program may have closed. */
static int open_or_create(const char* file, int flags)
{
    flags |= O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NOCTTY;
    int fd = open(file, flags, 0666);
    if (fd < 0 && errno == ENOENT) {
        make_directories(file);
        fd = open(file, flags, 0666);
    }
    if (fd >= 0 && fd < 3) {
        const int higher = fcntl(fd, F_DUPFD_CLOEXEC, 3);
        close(fd);
        fd = higher;
    }
    return fd;
}

/* Writes the image and closes the file; else the file beside is removed, with errno as it was. */
static int write_beside(int fd, const struct image* image)
{
    const size_t size = image->header_size + image->word_count * sizeof(uint64_t);
    const int is_written = write_all(fd, image->header, size);
    int error = errno;
    const int is_closed = close(fd) == 0;
    if (is_written && is_closed) {
        return 1;
    }
    error = is_written ? errno : error;
    unlink(beside);
    errno = error;
    return 0;
}

/* --- slots */

/* Whether what keeps a file from being opened is that file, or would be the same with any. */
static enum outcome after_failed_open(void)
{
    switch (errno) {
    case EACCES:
    case EEXIST:
    case EISDIR:
    case ELOOP:
    case ENXIO:
    case EPERM:
        return UNFIT;
    default:
        return FAILED;
    }
}

/* Locks the slot, unless it is busy or was replaced since it was opened. */
static enum outcome lock_slot(int fd, struct stat* state)
{
    struct stat now;
    if (flock(fd, LOCK_EX | LOCK_NB) != 0) {
        return errno == EWOULDBLOCK ? BUSY : FAILED;
    }
    if (fstat(fd, state) != 0 || !S_ISREG(state->st_mode)) {
        return UNFIT;
    }
    const int is_same =
        lstat(path, &now) == 0 && now.st_dev == state->st_dev && now.st_ino == state->st_ino;
    return is_same ? WRITTEN : BUSY;
}

/* Reads the counts of the slot into the image; none of an empty one, which its creator did not come
 * to fill. 0 when it is not sound. */
static int read_slot(int fd, off_t size, struct image* image)
{
    const size_t counts = image->word_count * sizeof(uint64_t);
    const struct iovec parts[] = {{image->file_header, image->header_size}, {image->words, counts}};
    if (size == 0) {
        memset(image->words, 0, counts);
        return 1;
    }
    const off_t wanted = (off_t)(image->header_size + counts);
    return size == wanted && readv(fd, parts, 2) == wanted &&
           memcmp(image->file_header, image->header, image->header_size) == 0;
}

/* With the lock held. */
static enum outcome replace_slot(struct module* module)
{
    image_join(module);
    int fd = open_or_create(beside, O_WRONLY | O_EXCL);
    if (fd < 0 && errno == EEXIST && unlink(beside) == 0) {
        fd = open_or_create(beside, O_WRONLY | O_EXCL);
    }
    if (fd < 0) {
        return after_failed_open();
    }
    if (!write_beside(fd, &module->image)) {
        return FAILED;
    }
    if (rename(beside, path) != 0) {
        unlink(beside);
        return UNFIT;
    }
    return WRITTEN;
}

static enum outcome merge_with_slot(struct module* module)
{
    const int fd = open_or_create(path, O_RDWR | O_NONBLOCK);
    if (fd < 0) {
        return after_failed_open();
    }
    struct stat state;
    enum outcome outcome = lock_slot(fd, &state);
    if (outcome == WRITTEN) {
        outcome = read_slot(fd, state.st_size, &module->image) ? replace_slot(module) : UNFIT;
    }
    close(fd);
    return outcome;
}

/* Always the first that is free, so that there are as few files as processes that end at once. */
static enum outcome merge_with_any_slot(struct module* module)
{
    enum outcome outcome = UNFIT;
    for (unsigned int slot = 0; slot < SLOTS; ++slot) {
        char place[4] = "";
        struct out out = {place, sizeof place, 0};
        out_number(&out, slot);
        if (!out_end(&out) || !make_paths(module, place)) {
            return FAILED;
        }
        const enum outcome of_slot = merge_with_slot(module);
        if (of_slot == WRITTEN || of_slot == FAILED) {
            return of_slot;
        }
        outcome = of_slot == BUSY ? BUSY : outcome;
    }
    return outcome;
}

/* --- a file of this process alone */

/* Gives the file beside its name unless that is taken; BUSY if it is. */
static enum outcome publish(void)
{
    if (link(beside, path) == 0) {
        unlink(beside);
        return WRITTEN;
    }
    /* A file system without hard links looks before. */
    if (errno != EEXIST && access(path, F_OK) != 0 && rename(beside, path) == 0) {
        return WRITTEN;
    }
    const int error = errno;
    const int is_taken = access(path, F_OK) == 0;
    unlink(beside);
    errno = error;
    return is_taken ? BUSY : FAILED;
}

/* A process of the same id may have left files here, or work in another container: names that are
 * taken are passed over. */
static int write_own(struct module* module)
{
    static unsigned long long counter;
    struct image* const image = &module->image;
    memset(image->words, 0, image->word_count * sizeof(uint64_t));
    image_join(module);
    for (; counter < MAX_COUNTER; ++counter) {
        char place[48];
        struct out out = {place, sizeof place, 0};
        out_number(&out, (unsigned long long)getpid());
        out_text(&out, ".");
        out_number(&out, counter);
        if (!out_end(&out) || !make_paths(module, place)) {
            return 0;
        }
        const int fd = open_or_create(beside, O_WRONLY | O_EXCL);
        if (fd < 0 && errno == EEXIST) {
            continue;
        }
        if (fd < 0 || !write_beside(fd, image)) {
            return 0;
        }
        const enum outcome outcome = publish();
        if (outcome != BUSY) {
            return outcome == WRITTEN;
        }
    }
    return 0;
}

int dump_file_write(struct module* module)
{
    const struct timespec moment = {0, 1000000};
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    const time_t end = now.tv_sec + PATIENCE;
    enum outcome outcome;
    while ((outcome = merge_with_any_slot(module)) == BUSY && now.tv_sec < end) {
        nanosleep(&moment, NULL);
        clock_gettime(CLOCK_MONOTONIC, &now);
    }
    return outcome == WRITTEN || write_own(module);
}
