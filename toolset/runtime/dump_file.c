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
#include "secure.h"

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
    SLOTS = 16,       /* files that runs share */
    MORE_SLOTS = 256, /* with those that are taken when all of them are held or damaged */
    TRIES = 100,      /* names that are tried for a file of this process alone */
    PATIENCE = 1      /* whole seconds that pass before no slot is waited for any more */
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
    int status;
    do {
        status = flock(fd, LOCK_EX | LOCK_NB);
    } while (status != 0 && errno == EINTR);
    if (status != 0) {
        return errno == EWOULDBLOCK ? BUSY : FAILED;
    }
    if (fstat(fd, state) != 0 || !S_ISREG(state->st_mode)) {
        return UNFIT;
    }
    const int is_same = fstatat(place.directory, place.path, &now, AT_SYMLINK_NOFOLLOW) == 0 &&
                        now.st_dev == state->st_dev && now.st_ino == state->st_ino;
    return is_same ? WRITTEN : BUSY;
}

/* Reads the whole file; 0 when it is not of that size. */
static int read_file(int fd, struct image* image)
{
    struct iovec parts[] = {{image->file_header, image->header_size},
                            {image->words, image->word_count * sizeof(uint64_t)}};
    for (int part = 0; part < 2;) {
        ssize_t got = readv(fd, parts + part, 2 - part);
        if (got <= 0 && (got == 0 || errno != EINTR)) {
            return 0;
        }
        for (; part < 2 && got >= (ssize_t)parts[part].iov_len; ++part) {
            got -= (ssize_t)parts[part].iov_len;
        }
        if (part < 2 && got > 0) {
            parts[part].iov_base = (char*)parts[part].iov_base + got;
            parts[part].iov_len -= (size_t)got;
        }
    }
    return 1;
}

/* Reads the counts of the slot into the image; none of an empty one, which its creator did not come
 * to fill. 0 when it is not sound. */
static int read_slot(int fd, off_t size, struct image* image)
{
    if (size == 0) {
        memset(image->words, 0, image->word_count * sizeof(uint64_t));
        return 1;
    }
    return size == (off_t)size_of_file(image) && read_file(fd, image) &&
           memcmp(image->file_header, image->header, image->header_size) == 0;
}

/* Empties the file beside when it has more bytes than are written. */
static int fit(int fd, const struct stat* state, off_t size)
{
    int status = 0;
    while (state->st_size > size && (status = ftruncate(fd, 0)) != 0 && errno == EINTR) {
    }
    return status == 0;
}

/* Opens the file beside the slot, which may be what a killed writer left: only its room is used.
 * One that has another name too is not ours to write. */
static int open_beside(off_t size)
{
    struct stat state;
    const int fd = open_or_create(&place, place.beside, O_WRONLY | O_NONBLOCK);
    if (fd >= 0 && fstat(fd, &state) == 0 && S_ISREG(state.st_mode) && state.st_nlink == 1 &&
        (!is_secure() || state.st_uid == geteuid()) && fit(fd, &state, size)) {
        return fd;
    }
    const int error = errno;
    if (fd >= 0) {
        close(fd);
    }
    if (unlinkat(place.directory, place.beside, 0) != 0) {
        errno = error;
        return -1;
    }
    return open_or_create(&place, place.beside, O_WRONLY | O_EXCL);
}

static int exchange(void)
{
    const int at = place.directory;
#ifdef SYS_renameat2
    enum { RENAME_BOTH = 2 };
    if (syscall(SYS_renameat2, at, place.beside, at, place.path, RENAME_BOTH) == 0) {
        return 1;
    }
#endif
    return renameat(at, place.beside, at, place.path) == 0;
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
        unlinkat(place.directory, place.beside, 0);
        return UNFIT;
    }
    return WRITTEN;
}

static enum outcome merge_with_slot(struct module* module)
{
    const int fd = open_or_create(&place, place.path, O_RDWR | O_NONBLOCK);
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
static enum outcome merge_with_any_slot(struct module* module, unsigned int slot, unsigned int end)
{
    enum outcome outcome = UNFIT;
    for (; slot < end; ++slot) {
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

/* Gives the file beside its name unless that is taken; BUSY if it is. Nobody else gives that name
 * meanwhile, for it takes the file beside, which is created exclusively. */
static enum outcome publish(void)
{
    const int at = place.directory;
    const int is_taken = faccessat(at, place.path, F_OK, 0) == 0;
    if (!is_taken && renameat(at, place.beside, at, place.path) == 0) {
        return WRITTEN;
    }
    const int error = errno;
    unlinkat(at, place.beside, 0);
    errno = error;
    return is_taken ? BUSY : FAILED;
}

/* Processes of the same id may have left files here or work in other containers: the time makes the
 * name another one, without a search. */
static int write_own(struct module* module)
{
    struct image* const image = &module->image;
    struct timespec now = {0, 0};
    memset(image->words, 0, image->word_count * sizeof(uint64_t));
    image_join(module);
    for (int i = 0; i < TRIES; ++i) {
        char name[64];
        struct out out = {name, sizeof name, 0};
        clock_gettime(CLOCK_REALTIME, &now);
        out_number(&out, (unsigned long long)getpid());
        out_text(&out, ".");
        out_number(&out, (unsigned long long)now.tv_sec * 1000000000 + (unsigned long)now.tv_nsec);
        if (!out_end(&out) || !place_name(&place, module, name)) {
            return 0;
        }
        const int fd = open_or_create(&place, place.beside, O_WRONLY | O_EXCL);
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

/* Waits for a slot as long as its patience goes, then takes one of the others. */
static int write_somewhere(struct module* module)
{
    const struct timespec moment = {0, 1000000};
    struct timespec now = {0, 0};
    time_t end = 0;
    enum outcome outcome;
    while ((outcome = merge_with_any_slot(module, 0, SLOTS)) == BUSY && now.tv_sec <= end) {
        nanosleep(&moment, NULL);
        clock_gettime(CLOCK_MONOTONIC, &now);
        end = end == 0 ? now.tv_sec + PATIENCE : end;
    }
    if (outcome == BUSY || outcome == UNFIT) {
        outcome = merge_with_any_slot(module, SLOTS, MORE_SLOTS);
    }
    return outcome == WRITTEN || write_own(module);
}

int dump_file_write(struct module* module)
{
    if (!place_enter(&place, module)) {
        return 0;
    }
    const int is_written = write_somewhere(module);
    place_leave(&place);
    return is_written;
}
