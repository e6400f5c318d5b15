/* Preloaded into test runs that are to be compared: the clock that seeds random numbers stands
   still, stop-watches advance by a millisecond whenever they are read, and random bytes are the
   same in each process. */
#define _GNU_SOURCE
#include <stdint.h>
#include <stdlib.h>
#include <sys/random.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

static uint64_t next_state(void)
{
    static uint64_t state = 0x9e3779b97f4a7c15;
    state ^= state << 13;
    state ^= state >> 7;
    return state ^= state << 17;
}

time_t time(time_t* seconds)
{
    const time_t fixed = 1700000000;
    if (seconds)
        *seconds = fixed;
    return fixed;
}

static long next_millisecond(void)
{
    static long milliseconds = 1000;
    return __atomic_add_fetch(&milliseconds, 1, __ATOMIC_RELAXED);
}

clock_t clock(void)
{
    return next_millisecond() * (CLOCKS_PER_SEC / 1000);
}

/* Build tools compare the time of day with that of files. */
int clock_gettime(clockid_t id, struct timespec* now)
{
    if (id == CLOCK_REALTIME || id == CLOCK_REALTIME_COARSE)
        return (int)syscall(SYS_clock_gettime, id, now);
    const long milliseconds = next_millisecond();
    now->tv_sec = milliseconds / 1000;
    now->tv_nsec = milliseconds % 1000 * 1000000;
    return 0;
}

ssize_t getrandom(void* buffer, size_t size, unsigned flags)
{
    (void)flags;
    for (size_t i = 0; i < size; i++)
        ((unsigned char*)buffer)[i] = (unsigned char)(next_state() >> 32);
    return (ssize_t)size;
}

void arc4random_buf(void* buffer, size_t size)
{
    getrandom(buffer, size, 0);
}

uint32_t arc4random(void)
{
    return (uint32_t)next_state();
}
