/* Preloaded: what a program asks of its system fails. FAIL_MALLOC=N: its N-th allocation;
   FAIL_FLOCK: locks of files; with it every process has the same id. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <stdlib.h>
#include <sys/file.h>
#include <unistd.h>

extern void* __libc_malloc(size_t size);
extern void* __libc_calloc(size_t count, size_t size);

static int fails(void)
{
    static int left = -1;
    if (left < 0) {
        const char* text = getenv("FAIL_MALLOC");
        left = text != NULL ? atoi(text) : 0;
    }
    if (left == 0 || --left > 0) {
        return 0;
    }
    write(9, "failed", 6);
    errno = ENOMEM;
    return 1;
}

void* malloc(size_t size)
{
    return fails() ? NULL : __libc_malloc(size);
}

void* calloc(size_t count, size_t size)
{
    return fails() ? NULL : __libc_calloc(count, size);
}

int flock(int fd, int operation)
{
    int (*real)(int, int);
    *(void**)&real = dlsym(RTLD_NEXT, "flock");
    errno = ENOLCK;
    return getenv("FAIL_FLOCK") != NULL ? -1 : real(fd, operation);
}

pid_t getpid(void)
{
    return 7;
}
