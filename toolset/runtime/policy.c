/* Timer and signals ask for a dump at moments that the program does not choose; both go away before
 * the arrays do. */
#include "policy.h"

#include "copies.h"
#include "ends.h"
#include "report.h"

#include <errno.h>
#include <pthread.h>
#include <signal.h>
#include <stdlib.h>
#include <time.h>

/* --- the timer */

static pthread_mutex_t timer_lock = PTHREAD_MUTEX_INITIALIZER;
static pthread_cond_t timer_changed = PTHREAD_COND_INITIALIZER;
static pthread_t timer_thread;
static int timer_runs;
static int interval; /* seconds; 0: no timer */

static void* dump_at_intervals(void* unused)
{
    (void)unused;
    pthread_mutex_lock(&timer_lock);
    while (interval > 0) {
        struct timespec end;
        clock_gettime(CLOCK_REALTIME, &end);
        end.tv_sec += interval;
        if (pthread_cond_timedwait(&timer_changed, &timer_lock, &end) == ETIMEDOUT) {
            pthread_mutex_unlock(&timer_lock);
            this_copy_dump();
            pthread_mutex_lock(&timer_lock);
        }
    }
    pthread_mutex_unlock(&timer_lock);
    return NULL;
}

/* The thread takes no signals: they belong to the program. */
static void start_thread(void)
{
    sigset_t all;
    sigset_t mask;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, &mask);
    const int error = pthread_create(&timer_thread, NULL, dump_at_intervals, NULL);
    timer_runs = error == 0;
    pthread_sigmask(SIG_SETMASK, &mask, NULL);
    if (error != 0) {
        report_failure("TimerPolicy has no effect: no thread can be started", error);
    }
}

void policy_start_timer(int seconds)
{
    if (seconds < 1) {
        return;
    }
    pthread_mutex_lock(&timer_lock);
    if (interval == 0 || seconds < interval) {
        interval = seconds;
        pthread_cond_signal(&timer_changed);
    }
    if (!timer_runs) {
        start_thread();
    }
    pthread_mutex_unlock(&timer_lock);
}

void policy_restart_in_child(void)
{
    const pthread_mutex_t fresh_lock = PTHREAD_MUTEX_INITIALIZER;
    const pthread_cond_t fresh_condition = PTHREAD_COND_INITIALIZER;
    timer_lock = fresh_lock;
    timer_changed = fresh_condition;
    if (timer_runs) {
        start_thread();
    }
}

/* --- the signals */

enum { SIGNALS = 65 };

/* What the signals did before, by number; null for those that are not watched. Each is made when
 * the signal is watched: few programs watch one. */
static struct sigaction* before[SIGNALS];

/* Signals that only ask for a dump, or that do nothing by default. */
static int ends_process(int number)
{
    static const int HARMLESS[] = {SIGUSR1, SIGUSR2, SIGCHLD, SIGCONT, SIGURG, SIGWINCH};
    for (size_t i = 0; i < sizeof HARMLESS / sizeof *HARMLESS; ++i) {
        if (HARMLESS[i] == number) {
            return 0;
        }
    }
    return number < SIGRTMIN;
}

static void dump_at_signal(int number, siginfo_t* info, void* context)
{
    const int saved = errno;
    const struct sigaction* const old = before[number];
    this_copy_dump();
    if ((old->sa_flags & SA_SIGINFO) != 0) {
        old->sa_sigaction(number, info, context);
    } else if (old->sa_handler == SIG_DFL) {
        if (ends_process(number)) {
            /* It is blocked in its own handler, so it arrives when this function has ended. */
            sigaction(number, old, NULL);
            raise(number);
        }
    } else if (old->sa_handler != SIG_IGN) {
        old->sa_handler(number);
    }
    errno = saved;
}

void policy_watch_signal(int number)
{
    if (number < 1 || number >= SIGNALS || before[number] != NULL) {
        return;
    }
    struct sigaction action = {.sa_flags = SA_SIGINFO | SA_RESTART | SA_ONSTACK};
    action.sa_sigaction = dump_at_signal;
    sigfillset(&action.sa_mask);
    struct sigaction* const old = malloc(sizeof *old);
    if (old != NULL && sigaction(number, NULL, old) == 0) {
        if (ends_is_ours(old)) {
            *old = (struct sigaction){.sa_flags = 0}; /* the default */
        }
        before[number] = old; /* before the first signal can come */
        if (sigaction(number, &action, NULL) == 0) {
            return;
        }
        before[number] = NULL;
    }
    report_failure("SignalPolicy has no effect: that signal cannot be watched", errno);
    free(old);
}

/* --- the end */

/* A signal that only asked for a dump is ignored from now on: there is nothing left to dump, and
 * by default it would end the process. */
static void put_back(int number)
{
    struct sigaction action = *before[number];
    if ((action.sa_flags & SA_SIGINFO) == 0 && action.sa_handler == SIG_DFL &&
        !ends_process(number)) {
        action.sa_handler = SIG_IGN;
    }
    sigaction(number, &action, NULL);
}

static void put_back_handlers(void)
{
    for (int number = 1; number < SIGNALS; ++number) {
        struct sigaction now;
        if (before[number] != NULL && sigaction(number, NULL, &now) == 0 &&
            (now.sa_flags & SA_SIGINFO) != 0 && now.sa_sigaction == dump_at_signal) {
            put_back(number);
        }
    }
}

void policy_stop(void)
{
    put_back_handlers();
    if (timer_runs) {
        pthread_mutex_lock(&timer_lock);
        interval = 0;
        pthread_cond_signal(&timer_changed);
        pthread_mutex_unlock(&timer_lock);
        pthread_join(timer_thread, NULL);
        timer_runs = 0;
    }
}
