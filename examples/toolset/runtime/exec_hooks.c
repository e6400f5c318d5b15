/* A successful exec ends the program without its destructors. The link driver has calls of the exec
 * family go to the functions here (option --wrap of the linker); each dumps and goes on to the real
 * one. They are weak: a program that wraps such a function itself keeps its own. */
#include "lltcov_rt.h"

#include <stdarg.h>
#include <stddef.h>

#define HOOK __attribute__((weak, visibility("hidden")))

/* By the linker's convention: __real_X is X, and X is __wrap_X. */
int __real_execv(const char* path, char* const argv[]);
int __real_execvp(const char* file, char* const argv[]);
int __real_execve(const char* path, char* const argv[], char* const envp[]);
int __real_execvpe(const char* file, char* const argv[], char* const envp[]);
int __real_fexecve(int fd, char* const argv[], char* const envp[]);

int __wrap_execv(const char* path, char* const argv[]);
int __wrap_execvp(const char* file, char* const argv[]);
int __wrap_execve(const char* path, char* const argv[], char* const envp[]);
int __wrap_execvpe(const char* file, char* const argv[], char* const envp[]);
int __wrap_fexecve(int fd, char* const argv[], char* const envp[]);
int __wrap_execl(const char* path, const char* arg, ...);
int __wrap_execlp(const char* file, const char* arg, ...);
int __wrap_execle(const char* path, const char* arg, ...);

HOOK int __wrap_execv(const char* path, char* const argv[])
{
    lltcov_dump();
    return __real_execv(path, argv);
}

HOOK int __wrap_execvp(const char* file, char* const argv[])
{
    lltcov_dump();
    return __real_execvp(file, argv);
}

HOOK int __wrap_execve(const char* path, char* const argv[], char* const envp[])
{
    lltcov_dump();
    return __real_execve(path, argv, envp);
}

HOOK int __wrap_execvpe(const char* file, char* const argv[], char* const envp[])
{
    lltcov_dump();
    return __real_execvpe(file, argv, envp);
}

HOOK int __wrap_fexecve(int fd, char* const argv[], char* const envp[])
{
    lltcov_dump();
    return __real_fexecve(fd, argv, envp);
}

/* Arguments up to and with the null pointer. */
static size_t count_arguments(const char* first, va_list arguments)
{
    size_t count = 1;
    for (const char* at = first; at != NULL; at = va_arg(arguments, const char*)) {
        ++count;
    }
    return count;
}

static void fill(char** argv, size_t count, const char* first, va_list arguments)
{
    argv[0] = (char*)first;
    for (size_t i = 1; i < count; ++i) {
        argv[i] = va_arg(arguments, char*);
    }
}

/* Defines `argv` from the arguments behind `arg`; `last` is read behind them. */
#define COLLECT(last)                                                                              \
    va_list arguments;                                                                             \
    va_start(arguments, arg);                                                                      \
    const size_t count = count_arguments(arg, arguments);                                          \
    va_end(arguments);                                                                             \
    char* argv[count];                                                                             \
    va_start(arguments, arg);                                                                      \
    fill(argv, count, arg, arguments);                                                             \
    last;                                                                                          \
    va_end(arguments)

HOOK int __wrap_execl(const char* path, const char* arg, ...)
{
    COLLECT((void)0);
    return __wrap_execv(path, argv);
}

HOOK int __wrap_execlp(const char* file, const char* arg, ...)
{
    COLLECT((void)0);
    return __wrap_execvp(file, argv);
}

HOOK int __wrap_execle(const char* path, const char* arg, ...)
{
    COLLECT(char* const* envp = va_arg(arguments, char* const*));
    return __wrap_execve(path, argv, envp);
}
