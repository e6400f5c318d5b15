/* The functions that the compiler puts in the place of the exec family. */
#include "runtime_program.h"

#include <errno.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

int __gcov_execv(const char* path, char* const* arguments);
int __gcov_execvp(const char* file, char* const* arguments);
int __gcov_execve(const char* path, char* const* arguments, char* const* environment);
int __gcov_execl(const char* path, char* argument, ...);
int __gcov_execlp(const char* file, char* argument, ...);
int __gcov_execle(const char* path, char* argument, ...);

/* The new program: sees all nine words and its environment, or exits with another status. */
void arrived(char** argv)
{
    const char* value = getenv("TEST_EXEC");
    for (int i = 0; i < 9; ++i) {
        if (argv[i + 2] == NULL || argv[i + 2][0] != '1' + i) {
            exit(3);
        }
    }
    if (argv[11] != NULL || value == NULL || strcmp(value, "yes") != 0) {
        exit(4);
    }
    hit(8);
}

void by_exec(char** argv)
{
    char *self = argv[0], *how = argv[2];
    char* words[] = {self, "arrived", "1", "2", "3", "4", "5", "6", "7", "8", "9", NULL};
#define LIST self, "arrived", "1", "2", "3", "4", "5", "6", "7", "8", "9", (char*)NULL
    char* environment[] = {"TEST_EXEC=yes", "LLTCOV_ROOT=root", NULL};
    if (strcmp(how, "ve") == 0) {
        __gcov_execve(self, words, environment);
    } else if (strcmp(how, "le") == 0) {
        __gcov_execle(self, LIST, environment);
    }
    setenv("TEST_EXEC", "yes", 1);
    if (strcmp(how, "v") == 0) {
        __gcov_execv(self, words);
    } else if (strcmp(how, "vp") == 0) {
        __gcov_execvp(self, words);
    } else if (strcmp(how, "l") == 0) {
        __gcov_execl(self, LIST);
    } else if (strcmp(how, "lp") == 0) {
        __gcov_execlp(self, LIST);
    } else if (__gcov_execl("./nowhere", self, (char*)NULL) == -1 && errno == ENOENT) {
        hit(2); /* and the program goes on */
    }
}

void vfork_exec(char** argv)
{
    char* words[] = {argv[0], "exit", NULL};
    const pid_t child = vfork();
    if (child == 0) {
        __gcov_execv(argv[0], words);
        _exit(1);
    }
    waitpid(child, NULL, 0);
}

void exec_from_loaded(char** argv)
{
    load_plugin(argv[2]);
    __gcov_execl("/bin/true", "true", (char*)NULL);
}
