// An allocator that fails on demand, linked into the programs in place of the C library's:
// FAIL_ALLOCATION=N fails the N-th allocation, FAIL_ALLOCATION=-N that one and all after it. The
// first one that fails makes the file that FAILED_ALLOCATION names. Nothing is ever freed.
#define _GNU_SOURCE
#include <errno.h>
#include <fcntl.h>
#include <stddef.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <unistd.h>

enum { ROOM = 1 << 30, HEADER = 16 };

static char* room;
static size_t used;

static int must_fail(void)
{
    static long count;
    const char* wanted = getenv("FAIL_ALLOCATION");
    ++count;
    if (wanted == NULL) {
        return 0;
    }
    const long number = strtol(wanted, NULL, 10);
    if (count != number && (number >= 0 || count < -number)) {
        return 0;
    }
    const char* mark = getenv("FAILED_ALLOCATION");
    if (mark != NULL) {
        close(open(mark, O_CREAT | O_WRONLY | O_CLOEXEC, 0644));
    }
    return 1;
}

// The size of a piece stands in front of it, for realloc.
void* aligned_alloc(size_t alignment, size_t size)
{
    if (room == NULL) {
        room = mmap(NULL, ROOM, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE,
                    -1, 0);
    }
    const size_t start = (used + HEADER + alignment - 1) / alignment * alignment;
    if (must_fail() || room == MAP_FAILED || size > ROOM || start + size > ROOM) {
        errno = ENOMEM;
        return NULL;
    }
    used = start + size;
    memcpy(room + start - sizeof size, &size, sizeof size);
    return room + start;
}

void* memalign(size_t alignment, size_t size)
{
    return aligned_alloc(alignment, size);
}
void* malloc(size_t size)
{
    return aligned_alloc(HEADER, size);
}

int posix_memalign(void** piece, size_t alignment, size_t size)
{
    *piece = aligned_alloc(alignment, size);
    return *piece == NULL ? ENOMEM : 0;
}

void* calloc(size_t number, size_t size)
{
    return size != 0 && number > ROOM / size ? NULL
                                             : malloc(number * size); // fresh pages hold zeros
}

void* realloc(void* old, size_t size)
{
    void* piece = malloc(size);
    if (piece != NULL && old != NULL) {
        size_t old_size;
        memcpy(&old_size, (char*)old - sizeof old_size, sizeof old_size);
        memcpy(piece, old, old_size < size ? old_size : size);
    }
    return piece;
}

void free(void* piece)
{
    (void)piece;
}
