/* Preloaded into test runs that are to be compared: the clock that seeds random numbers stands
   still, and random bytes are the same in each process. */
#define _GNU_SOURCE
#include <stdint.h>
#include <stdlib.h>
#include <sys/random.h>
#include <time.h>

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

ssize_t getrandom(void* buffer, size_t size, unsigned flags)
{
    (void)flags;
    for (size_t i = 0; i < size; i++)
        ((unsigned char*)buffer)[i] = (unsigned char)(next_state() >> 32);
    return (ssize_t)size;
}

void arc4random_buf(void* buffer, size_t size) { getrandom(buffer, size, 0); }

uint32_t arc4random(void) { return (uint32_t)next_state(); }
