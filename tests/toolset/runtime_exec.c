/* Calls of the exec family, by the functions that the compiler puts in their place. */
#define execl __gcov_execl
#define execle __gcov_execle
#define execlp __gcov_execlp
#define execv __gcov_execv
#define execve __gcov_execve
#define execvp __gcov_execvp
#include "runtime_program.h"

#include <errno.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

/* The new program sees all nine words and its environment, or exits with another status. */
#define CHECK "test \"$*\" = '1 2 3 4 5 6 7 8 9' && test \"$TEST_EXEC\" = yes"
#define LIST "sh", "-c", CHECK, "sh", "1", "2", "3", "4", "5", "6", "7", "8", "9", (char*)NULL

void by_exec(char** argv)
{
    const char* how = argv[2];
    char* words[] = {LIST};
    char* environment[] = {"TEST_EXEC=yes", NULL};
    if (strcmp(how, "ve") == 0) {
        execve("/bin/sh", words, environment);
    } else if (strcmp(how, "le") == 0) {
        execle("/bin/sh", LIST, environment);
    }
    setenv("TEST_EXEC", "yes", 1);
    if (strcmp(how, "v") == 0) {
        execv("/bin/sh", words);
    } else if (strcmp(how, "vp") == 0) {
        execvp("sh", words);
    } else if (strcmp(how, "l") == 0) {
        execl("/bin/sh", LIST);
    } else if (strcmp(how, "lp") == 0) {
        execlp("sh", LIST);
    } else if (execl("./nowhere", "", (char*)NULL) == -1 && errno == ENOENT) {
        hit(2); /* and the program goes on */
    }
}

void vfork_exec(char** argv)
{
    char* words[] = {argv[0], "exit", NULL};
    const pid_t child = vfork();
    if (child == 0) {
        execv(argv[0], words);
        _exit(1);
    }
    waitpid(child, NULL, 0);
}

void exec_from_loaded(char** argv)
{
    load_plugin(argv[2]);
    execl("/bin/true", "true", (char*)NULL);
}
