/* A signal that ends the process dumps on a stack of its own where the thread has one, so that a
 * stack that has overflowed is counted too; then it is delivered again with its default action, so
 * that the status and the core are as without. Only signals whose action is the default are taken:
 * what the program handles or ignores stays. */
#include "ends.h"

#include "copies.h"
#include "report.h"

#include <errno.h>
#include <signal.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <unistd.h>

enum { SIGNALS = 65, STACK_SIZE = 1 << 16 };

/* Which ends count beside exit. */
static enum { NONE, CALLS, ALL } counted;

static pid_t owner; /* the process whose counters these are */

void lltcov_before_end(void)
{
    if (counted != NONE && getpid() == owner) {
        copies_dump();
    }
}

void ends_adopt_child(void)
{
    owner = getpid();
}

void ends_set_up(void)
{
    /* Not in a set-user-id program: its caller must not choose what its signals do. */
    const char* const setting = secure_getenv("LLTCOV_ENDS");
    owner = getpid();
    if (setting != NULL && strcmp(setting, "calls") == 0) {
        counted = CALLS;
    } else if (setting != NULL && strcmp(setting, "all") == 0) {
        counted = ALL;
    } else if (setting != NULL && setting[0] != '\0') {
        report_failure("LLTCOV_ENDS has no effect: set it to 'calls' or 'all'", EINVAL);
    }
    if (counted != NONE && at_quick_exit(lltcov_before_end) != 0) {
        report_failure("quick_exit loses coverage counts: no memory is left", ENOMEM);
    }
}

/* --- signals */

/* Those that cannot be handled, and those that do not end a process by default. The C library keeps
 * the ones below SIGRTMIN to itself. */
static int is_fatal(int number)
{
    static const int OTHERS[] = {SIGKILL,  SIGSTOP, SIGCHLD, SIGCONT, SIGURG,
                                 SIGWINCH, SIGTSTP, SIGTTIN, SIGTTOU};
    for (size_t i = 0; i < sizeof OTHERS / sizeof *OTHERS; ++i) {
        if (OTHERS[i] == number) {
            return 0;
        }
    }
    return number <= SIGSYS || number >= SIGRTMIN;
}

/* The signal is blocked in here: raised again, it arrives when this function has ended. */
static void end_by_signal(int number, siginfo_t* info, void* context)
{
    const struct sigaction action = {.sa_flags = 0};
    const int saved = errno;
    (void)info;
    (void)context;
    lltcov_before_end();
    sigaction(number, &action, NULL); /* no flag and no handler: the default */
    raise(number);
    errno = saved;
}

int ends_is_ours(const struct sigaction* action)
{
    return (action->sa_flags & SA_SIGINFO) != 0 && action->sa_sigaction == end_by_signal;
}

/* For this thread alone: a thread of the program has none that the program does not give it. */
static void take_stack(void)
{
    stack_t stack;
    if (sigaltstack(NULL, &stack) != 0 || (stack.ss_flags & SS_DISABLE) == 0) {
        return;
    }
    stack.ss_sp =
        mmap(NULL, STACK_SIZE, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    stack.ss_size = STACK_SIZE;
    stack.ss_flags = 0;
    if (stack.ss_sp != MAP_FAILED) {
        sigaltstack(&stack, NULL);
    }
}

static int is_default(const struct sigaction* action)
{
    return (action->sa_flags & SA_SIGINFO) == 0 && action->sa_handler == SIG_DFL;
}

void ends_watch_signals(void)
{
    static int is_watching;
    if (counted != ALL || is_watching) {
        return;
    }
    is_watching = 1;
    take_stack();
    struct sigaction action = {.sa_flags = SA_SIGINFO | SA_ONSTACK};
    struct sigaction before;
    action.sa_sigaction = end_by_signal;
    sigfillset(&action.sa_mask);
    for (int number = 1; number < SIGNALS; ++number) {
        if (is_fatal(number) && sigaction(number, NULL, &before) == 0 && is_default(&before)) {
            sigaction(number, &action, NULL);
        }
    }
}

void ends_stop(void)
{
    const struct sigaction action = {.sa_flags = 0};
    struct sigaction now;
    for (int number = 1; counted == ALL && number < SIGNALS; ++number) {
        if (is_fatal(number) && sigaction(number, NULL, &now) == 0 && ends_is_ours(&now)) {
            sigaction(number, &action, NULL);
        }
    }
}
