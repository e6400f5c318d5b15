/* Registers counters as a generated stub does and ends in the way that its first argument names.
 * MODE: stub mode. With PLUGIN defined it is the shared library that "plugin" loads. */
#include "runtime_program.h"

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
#ifndef MARK
#define MARK "-"
#endif

/* The unit of sizes: 32 bits, bytes, or bits. */
#define UNITS(bytes) (MODE == 0 ? (bytes)*8 : MODE == 2 ? (bytes) : (bytes) / 4)

static unsigned long long counters[40];
static unsigned long long second[3];
static unsigned long long flags[4]; /* the last two join by "or" */

void __gcov_dump(void);
void __gcov_reset(void);

static int add(void* module, unsigned int index, const char* name, void* array, unsigned int size,
               unsigned int units)
{
    return QMR_AddCoverageBuf(module, index, (char*)name, array, size, units);
}

/* A program's own, which was there before the runtime's. */
static void own_handler(int number)
{
    _exit(number);
}

__attribute__((constructor)) static void start(void)
{
    const char* value = getenv("TEST_TIMER");
    TUSK_CovSetCompilePolicy(0);
    if (value != NULL) {
        const char* other = strchr(value, ',');
        TUSK_CovSetTimerPolicy(atoi(value));
        TUSK_CovSetTimerPolicy(other != NULL ? atoi(other + 1) : 0);
    }
    if ((value = getenv("TEST_HANDLER")) != NULL) {
        signal(atoi(value), own_handler);
    }
    if ((value = getenv("TEST_SIGNAL")) != NULL) {
        TUSK_CovSetSignalPolicy(atoi(value));
    }
    if ((value = getenv("TEST_ROOT")) != NULL) {
        TUSK_CovSetlltcovRootpath(value);
    }
    void* module =
        QMR_CreateCoverageListExt(NAME MARK "m", "area/" NAME "/codemeasure", 3, MODE + 1);
    if (!add(module, 0, "first.c", counters, sizeof counters, UNITS(320)) ||
        !add(module, 1, "second.c", second, 24, UNITS(24)) ||
        !add(module, 2, "twice.c", second, 24, UNITS(24)) ||
        add(module, 3, "larger_than_stated.c", flags, 31, UNITS(32)) ||
        add(module, 4, "half_a_counter.c", flags, 32, UNITS(28)) ||
        !add(module, 5, "flags.c:16", flags, 32, UNITS(32)) ||
        !QMRInit(0, (char*)"{\"projectname\":\"a \\\"b\\\"\",\"buid\":\"Q1\"}") ||
        QMRGetTargetState() != 0 || !ZKT_ServerInit(g_TUSKSockBindPort)) {
        abort();
    }
}

__attribute__((destructor)) static void end(void)
{
    QMR_DumpModuleCovdata((char*)NAME "_m");
}

void hit(int counter)
{
    ++counters[counter];
}

#ifdef PLUGIN
void run_plugin(void);
void run_plugin(void)
{
    hit(7);
}
#else

/* Runs after `end`, which is declared later. */
__attribute__((destructor(102))) static void late(void)
{
    if (getenv("TEST_LATE") != NULL) {
        hit(9);
    }
}

static void end_child(pid_t child, const char* how)
{
    if (child == 0) {
        hit(1);
        if (strcmp(how, "dump") == 0) {
            lltcov_dump();
        }
        strcmp(how, "exit") == 0 ? exit(0) : _exit(0);
    }
    waitpid(child, NULL, 0);
    hit(2);
}

static void by_fork(char** argv)
{
    end_child(fork(), argv[2]);
}

static void by_daemon(char** argv)
{
    if (fork() != 0) {
        _exit(0);
    }
    hit(5);
}

static void by_vfork(char** argv)
{
    if (vfork() == 0) {
        _exit(0);
    }
    hit(2);
}

static void without_end(char** argv)
{
    _exit(0);
}

static void dump_twice(char** argv)
{
    lltcov_dump();
    hit(2);
    _exit(lltcov_dump() ? 0 : 1);
}

static void reset(char** argv)
{
    __gcov_dump();
    __gcov_reset();
    hit(0);
}

static void* count_and_dump(void* unused)
{
    for (int i = 0; i < 200; ++i) {
        __atomic_fetch_add(&counters[3], 1, __ATOMIC_RELAXED);
        lltcov_dump();
    }
    return unused;
}

static void run_threads(char** argv)
{
    pthread_t threads[8];
    for (int i = 0; i < 8; ++i) {
        pthread_create(&threads[i], NULL, count_and_dump, NULL);
    }
    for (int i = argv[2] != NULL ? 50 : 0; i < 50; ++i) {
        end_child(fork(), "_exit");
    }
    for (int i = 0; i < 8; ++i) {
        pthread_join(threads[i], NULL);
    }
}

/* Says after each dump that it is done, until it is killed. */
static void dump_for_ever(char** argv)
{
    while (lltcov_dump() && write(1, ".", 1) == 1) {
        hit(0);
    }
}

static void set_flags(char** argv)
{
    ++flags[0];
    flags[2] |= (unsigned int)atoi(argv[2]);
    lltcov_dump();
    flags[3] |= 8;
}

void* load_plugin(const char* path)
{
    void* handle = dlopen(path, RTLD_NOW);
    void (*run)(void);
    *(void**)&run = dlsym(handle, "run_plugin");
    run();
    return handle;
}

static void unload(char** argv)
{
    dlclose(load_plugin(argv[2]));
    if (argv[3] != NULL) {
        raise(atoi(argv[3]));
    }
    lltcov_dump();
}

static void keep_loaded(char** argv)
{
    load_plugin(argv[2]);
    lltcov_dump();
    _exit(0);
}

static void raise_signal(char** argv)
{
    raise(atoi(argv[2]));
    _exit(0);
}

static void wait_for_timer(char** argv)
{
    if (argv[2] != NULL && fork() != 0) {
        _exit(0);
    }
    hit(6);
    usleep(1700000);
    _exit(0);
}

static void reopen(char** argv)
{
    fclose(freopen("data", "w", stderr));
    fopen("data", "w");
}

static void close_all(char** argv)
{
    close(0);
    close(1);
    close(2);
}

static const struct {
    const char* name;
    action* run;
} ACTIONS[] = {
    {"_exit", without_end},     {"closed", close_all},
    {"daemon", by_daemon},      {"dump__exit", dump_twice},
    {"endless", dump_for_ever}, {"exec", by_exec},
    {"flags", set_flags},       {"fork", by_fork},
    {"hidden", keep_loaded},    {"hidden_exec", exec_from_loaded},
    {"plugin", unload},         {"raise", raise_signal},
    {"reopened", reopen},       {"reset", reset},
    {"threads", run_threads},   {"vfork", by_vfork},
    {"vfork_exec", vfork_exec}, {"wait", wait_for_timer},
};

int main(int argc, char** argv)
{
    hit(0);
    for (size_t i = 0; argc > 1 && i < sizeof ACTIONS / sizeof *ACTIONS; ++i) {
        if (strcmp(argv[1], ACTIONS[i].name) == 0) {
            ACTIONS[i].run(argv);
        }
    }
    return 0;
}
#endif
