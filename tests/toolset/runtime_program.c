/* Registers counters as a generated stub does and ends in the way that its first argument names.
 * MODE: stub mode. With PLUGIN defined it is the shared library that "plugin" loads. */
#include "lltcov_rt.h"

#include <dlfcn.h>
#include <pthread.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

#ifndef MODE
#define MODE 1
#endif
#ifdef PLUGIN
#define NAME "plugin"
#else
#define NAME "program"
#endif
#if MODE == 2
static unsigned char counters[40];
#else
static unsigned int counters[40];
#endif
static unsigned int second[3];

__attribute__((constructor)) static void start(void)
{
    const char* value = getenv("TEST_TIMER");
    TUSK_CovSetCompilePolicy(0);
    if (value != NULL) {
        TUSK_CovSetTimerPolicy(atoi(value));
    }
    if ((value = getenv("TEST_SIGNAL")) != NULL) {
        TUSK_CovSetSignalPolicy(atoi(value));
    }
    if ((value = getenv("TEST_ROOT")) != NULL) {
        TUSK_CovSetlltcovRootpath(value);
    }
    void* module = QMR_CreateCoverageListExt(NAME "-m", "area/" NAME "/codemeasure", 2, MODE + 1);
    const unsigned int size = MODE == 2 ? 40 : MODE == 0 ? 8 : 160;
    if (!QMR_AddCoverageBuf(module, 0, (char*)"first.c", (unsigned int*)counters, size, 40) ||
        !QMR_AddCoverageBuf(module, 1, (char*)"second.c", second, 12, 3) ||
        !QMR_AddCoverageBuf(module, 2, (char*)"twice.c", second, 12, 3) ||
        !QMRInit(0, (char*)"{\"projectname\":\"a \\\"b\\\"\",\"buid\":\"Q1\"}") ||
        QMRGetTargetState() != 0 || !ZKT_ServerInit(g_TUSKSockBindPort)) {
        abort();
    }
}

__attribute__((destructor)) static void end(void)
{
    QMR_DumpModuleCovdata((char*)NAME "_m");
}

static void hit(int probe)
{
#if MODE == 0
    counters[probe / 32] |= 1U << probe % 32;
#else
    ++counters[probe];
#endif
}

#ifdef PLUGIN
void run_plugin(void);
void run_plugin(void)
{
    hit(7);
}
#else

/* Runs behind `end`, which is declared later. */
__attribute__((destructor(102))) static void late(void)
{
    if (getenv("TEST_LATE") != NULL) {
        hit(9);
    }
}

static void end_child(int by_exit)
{
    const pid_t child = fork();
    if (child == 0) {
        hit(1);
        if (by_exit == 2) {
            lltcov_dump();
        }
        by_exit == 1 ? exit(0) : _exit(0);
    }
    waitpid(child, NULL, 0);
    hit(2);
}

static void* count_and_dump(void* unused)
{
    for (int i = 0; i < 200; ++i) {
        __atomic_fetch_add(&counters[3], 1, __ATOMIC_RELAXED);
        lltcov_dump();
    }
    return unused;
}

__attribute__((unused)) static void own_handler(int number)
{
    (void)number;
    hit(4);
}

static void load_plugin(const char* path, int unload)
{
    void* handle = dlopen(path, RTLD_NOW);
    void (*run)(void);
    *(void**)&run = dlsym(handle, "run_plugin");
    run();
    if (unload) {
        dlclose(handle);
    }
    lltcov_dump();
}

static void run_threads(void)
{
    pthread_t threads[8];
    for (int i = 0; i < 8; ++i) {
        pthread_create(&threads[i], NULL, count_and_dump, NULL);
    }
    for (int i = 0; i < 50; ++i) {
        end_child(0);
    }
    for (int i = 0; i < 8; ++i) {
        pthread_join(threads[i], NULL);
    }
}

int main(int argc, char** argv)
{
    const char* how = argv[1];
    hit(0);
    if (strcmp(how, "fork_exit") == 0) {
        end_child(1);
    } else if (strcmp(how, "fork__exit") == 0) {
        end_child(0);
    } else if (strcmp(how, "fork_dump") == 0) {
        end_child(2);
    } else if (strcmp(how, "daemon") == 0) {
        if (fork() != 0) {
            _exit(0);
        }
        hit(5);
    } else if (strcmp(how, "vfork") == 0) {
        if (vfork() == 0) {
            _exit(0);
        }
        hit(2);
    } else if (strcmp(how, "_exit") == 0) {
        _exit(0);
    } else if (strcmp(how, "dump__exit") == 0) {
        lltcov_dump();
        hit(2);
        _exit(lltcov_dump() ? 0 : 1);
    } else if (strcmp(how, "reset") == 0) {
        lltcov_dump();
        lltcov_reset();
        hit(0);
    } else if (strcmp(how, "exec") == 0) {
        lltcov_dump();
        execl(argv[0], argv[0], "exit", (char*)NULL);
    } else if (strcmp(how, "threads") == 0) {
        run_threads();
    } else if (strcmp(how, "plugin") == 0) {
        load_plugin(argv[2], 1);
    } else if (strcmp(how, "hidden") == 0) {
        load_plugin(argv[2], 0);
        _exit(0);
    } else if (strcmp(how, "raise") == 0) {
        raise(atoi(argv[2]));
        _exit(0);
    } else if (strcmp(how, "wait") == 0) {
        if (argc > 2 && fork() != 0) {
            _exit(0);
        }
        hit(6);
        usleep(1700000);
        _exit(0);
    } else if (strcmp(how, "reopened") == 0) {
        fclose(freopen("data", "w", stderr));
        fopen("data", "w");
    } else if (strcmp(how, "closed") == 0) {
        close(0);
        close(1);
        close(2);
    }
    return 0;
}
#endif
