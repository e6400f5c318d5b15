/* Counts are dumped before what would lose them or count them twice. The compiler has the calls of
 * fork and of the exec family in instrumented code go to the functions __gcov_...; programs that
 * were written for its own runtime call two more. All are weak: objects that are linked with that
 * runtime bring their own. */
#include "process.h"

#include "copies.h"
#include "dump.h"
#include "ends.h"
#include "lltcov_rt.h"
#include "policy.h"
#include "registry.h"
#include "report.h"

#include <errno.h>
#include <pthread.h>
#include <signal.h>
#include <stdarg.h>
#include <stdlib.h>
#include <unistd.h>

static int is_set_up;
static int is_exiting;
static sigset_t fork_mask;

/* --- fork and exit */

static void before_fork(void)
{
    registry_lock(&fork_mask);
    dump_all_modules();
}

static void after_fork_in_parent(void)
{
    const sigset_t mask = fork_mask;
    registry_unlock(&mask);
}

static void after_fork_in_child(void)
{
    const sigset_t mask = fork_mask;
    registry_zero_counters();
    registry_forget_dumps();
    ends_adopt_child();
    registry_unlock(&mask);
    policy_restart_in_child();
}

/* Runs before the destructors of the program and its libraries, which still count. */
static void note_exit(void)
{
    is_exiting = 1;
}

int process_is_exiting(void)
{
    return is_exiting;
}

/* The last destructor of each image that was linked with the runtime. Where this copy has no
 * modules, that of another image keeps those of this one. */
__attribute__((destructor(101))) static void finish(void)
{
    policy_stop();
    ends_stop();
    registry_modules != NULL ? this_copy_dump() : copies_dump();
}

void process_set_up(void)
{
    if (!is_set_up) {
        is_set_up = 1;
        report_prepare();
        ends_set_up();
        const int error = pthread_atfork(before_fork, after_fork_in_parent, after_fork_in_child);
        if (error != 0 || atexit(note_exit) != 0) {
            report_failure(
                "coverage counts are wrong after a fork or at the end: no memory is left",
                error != 0 ? error : ENOMEM);
        }
    }
}

/* --- the compiler's names */

#define REPLACEMENT __attribute__((weak, visibility("default")))

REPLACEMENT pid_t __gcov_fork(void);
REPLACEMENT int __gcov_execv(const char* path, char* const* arguments);
REPLACEMENT int __gcov_execvp(const char* file, char* const* arguments);
REPLACEMENT int __gcov_execve(const char* path, char* const* arguments, char* const* environment);
REPLACEMENT int __gcov_execl(const char* path, char* argument, ...);
REPLACEMENT int __gcov_execlp(const char* file, char* argument, ...);
REPLACEMENT int __gcov_execle(const char* path, char* argument, ...);
REPLACEMENT void __gcov_dump(void);
REPLACEMENT void __gcov_reset(void);
REPLACEMENT void __gcov_init(void* tables);
REPLACEMENT void __gcov_exit(void);

/* What fork has to be prepared for is done by its handlers. */
pid_t __gcov_fork(void)
{
    return fork();
}

int __gcov_execv(const char* path, char* const* arguments)
{
    copies_dump();
    return execv(path, arguments);
}

int __gcov_execvp(const char* file, char* const* arguments)
{
    copies_dump();
    return execvp(file, arguments);
}

int __gcov_execve(const char* path, char* const* arguments, char* const* environment)
{
    copies_dump();
    return execve(path, arguments, environment);
}

/* The number of arguments with the null pointer at their end. */
static size_t count_arguments(const char* argument, va_list rest)
{
    size_t count = 1;
    while (argument != NULL) {
        argument = va_arg(rest, const char*);
        ++count;
    }
    return count;
}

/* With "argument" and "rest" of the function that it stands in, declares the array `arguments` and
 * leaves `rest` after the null pointer. A macro, for the array lives on the caller's stack: there
 * is no other memory that a program may use between vfork and exec. */
#define COLLECT_ARGUMENTS()                                                                        \
    va_list rest;                                                                                  \
    va_start(rest, argument);                                                                      \
    const size_t count = count_arguments(argument, rest);                                          \
    va_end(rest);                                                                                  \
    char* arguments[count];                                                                        \
    va_start(rest, argument);                                                                      \
    arguments[0] = argument;                                                                       \
    for (size_t i = 1; i < count; ++i) {                                                           \
        arguments[i] = va_arg(rest, char*);                                                        \
    }

int __gcov_execl(const char* path, char* argument, ...)
{
    COLLECT_ARGUMENTS()
    va_end(rest);
    return __gcov_execv(path, arguments);
}

int __gcov_execlp(const char* file, char* argument, ...)
{
    COLLECT_ARGUMENTS()
    va_end(rest);
    return __gcov_execvp(file, arguments);
}

int __gcov_execle(const char* path, char* argument, ...)
{
    COLLECT_ARGUMENTS()
    char* const* const environment = va_arg(rest, char* const*);
    va_end(rest);
    return __gcov_execve(path, arguments, environment);
}

void __gcov_dump(void)
{
    lltcov_dump();
}

void __gcov_reset(void)
{
    lltcov_reset();
}

/* What objects of GCC 11 call before main and at exit; their counters are registered by stubs. */
void __gcov_init(void* tables)
{
    (void)tables;
}

void __gcov_exit(void) {}
