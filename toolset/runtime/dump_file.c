/* Who has locked a file (a slot) reads it, adds its counts, writes the sum to a second file beside
 * it and exchanges the two. So a slot is whole at any time, whoever is killed, and the lock ends
 * with the process. The second file stays for the next writer: to create and remove one each time,
 * or to rename one over the slot, takes some file systems longer than a short program runs. */
#define _FILE_OFFSET_BITS 64 /* large numbers of files and large files on 32-bit machines */

#include "dump_file.h"

#include "image.h"
#include "out.h"
#include "place.h"
#include "registry.h"

#include <errno.h>
#include <fcntl.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h> // IWYU pragma: keep
#include <sys/uio.h>
#include <time.h>
#include <unistd.h>

enum {
    SLOTS = 16, /* files that runs share */
    MAX_COUNTER = 1000000,
    PATIENCE = 1 /* whole seconds that pass before no slot is waited for any more */
};

/* What comes of a slot. */
enum outcome {
    WRITTEN,
    BUSY,  /* another process has it */
    UNFIT, /* it is damaged or of another user: the next one may do */
    FAILED /* nor would the next one do */
};

/* Static, since a handler may run on a small stack; the lock guards it. */
static struct place place;

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
        lstat(place.path, &now) == 0 && now.st_dev == state->st_dev && now.st_ino == state->st_ino;
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
    const off_t wanted = (off_t)size_of_file(image);
    return size == wanted && readv(fd, parts, 2) == wanted &&
           memcmp(image->file_header, image->header, image->header_size) == 0;
}

/* Opens the file beside the slot, which may be what a killed writer left: only its room is used.
 * One that has another name too is not ours to write. */
static int open_beside(off_t size)
{
    struct stat state;
    const int fd = open_or_create(place.beside, O_WRONLY | O_NONBLOCK);
    if (fd >= 0 && fstat(fd, &state) == 0 && S_ISREG(state.st_mode) && state.st_nlink == 1 &&
        (state.st_size <= size || ftruncate(fd, 0) == 0)) {
        return fd;
    }
    const int error = errno;
    if (fd >= 0) {
        close(fd);
    }
    if (unlink(place.beside) != 0) {
        errno = error;
        return -1;
    }
    return open_or_create(place.beside, O_WRONLY | O_EXCL);
}

static int exchange(void)
{
#ifdef SYS_renameat2
    enum { RENAME_BOTH = 2 };
    if (syscall(SYS_renameat2, AT_FDCWD, place.beside, AT_FDCWD, place.path, RENAME_BOTH) == 0) {
        return 1;
    }
#endif
    return rename(place.beside, place.path) == 0;
}

/* Adds the image to the slot, whose lock is held, and puts the sum in its place. */
static enum outcome replace_slot(struct module* module)
{
    image_join(module);
    const int fd = open_beside((off_t)size_of_file(&module->image));
    if (fd < 0) {
        return after_failed_open();
    }
    if (!place_write(&place, fd, &module->image)) {
        return FAILED;
    }
    if (!exchange()) {
        unlink(place.beside);
        return UNFIT;
    }
    return WRITTEN;
}

static enum outcome merge_with_slot(struct module* module)
{
    const int fd = open_or_create(place.path, O_RDWR | O_NONBLOCK);
    if (fd < 0) {
        return after_failed_open();
    }
    struct stat state;
    enum outcome outcome = lock_slot(fd, &state);
    if (outcome == WRITTEN) {
        outcome = read_slot(fd, state.st_size, &module->image) ? replace_slot(module) : UNFIT;
    }
    /* A child that another thread starts in this moment (vfork, posix_spawn) has the descriptor
     * too, until its exec, and must not keep the lock. */
    flock(fd, LOCK_UN);
    close(fd);
    return outcome;
}

/* Always the first that is free, so that there are as few files as processes that end at once. */
static enum outcome merge_with_any_slot(struct module* module)
{
    enum outcome outcome = UNFIT;
    for (unsigned int slot = 0; slot < SLOTS; ++slot) {
        char name[4] = "";
        struct out out = {name, sizeof name, 0};
        out_number(&out, slot);
        if (!out_end(&out) || !place_name(&place, module, name)) {
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
    if (link(place.beside, place.path) == 0) {
        unlink(place.beside);
        return WRITTEN;
    }
    /* A file system without hard links looks before. */
    if (errno != EEXIST && access(place.path, F_OK) != 0 && rename(place.beside, place.path) == 0) {
        return WRITTEN;
    }
    const int error = errno;
    const int is_taken = access(place.path, F_OK) == 0;
    unlink(place.beside);
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
        char name[48];
        struct out out = {name, sizeof name, 0};
        out_number(&out, (unsigned long long)getpid());
        out_text(&out, ".");
        out_number(&out, counter);
        if (!out_end(&out) || !place_name(&place, module, name)) {
            return 0;
        }
        const int fd = open_or_create(place.beside, O_WRONLY | O_EXCL);
        if (fd < 0 && errno == EEXIST) {
            continue;
        }
        if (fd < 0 || !place_write(&place, fd, image)) {
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
    struct timespec now = {0, 0};
    time_t end = 0;
    enum outcome outcome;
    while ((outcome = merge_with_any_slot(module)) == BUSY && now.tv_sec <= end) {
        nanosleep(&moment, NULL);
        clock_gettime(CLOCK_MONOTONIC, &now);
        end = end == 0 ? now.tv_sec + PATIENCE : end;
    }
    return outcome == WRITTEN || write_own(module);
}
