/* Calls of _exit and _Exit, which a link with "--wrap" sends here. An object of its own: without
 * that option nothing has the names of the real functions. */
#include "ends.h"

#pragma GCC visibility push(default)
void __real__exit(int status) __attribute__((noreturn));
void __real__Exit(int status) __attribute__((noreturn));
#pragma GCC visibility pop
#pragma GCC visibility push(hidden)
void __wrap__exit(int status) __attribute__((noreturn));
void __wrap__Exit(int status) __attribute__((noreturn));
#pragma GCC visibility pop

void __wrap__exit(int status)
{
    lltcov_before_end();
    __real__exit(status);
}

void __wrap__Exit(int status)
{
    lltcov_before_end();
    __real__Exit(status);
}
