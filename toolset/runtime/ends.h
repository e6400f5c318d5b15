/* The ends of a process that run no destructors. Which of them count is told by LLTCOV_ENDS of the
 * environment: "calls" those by a call, "all" fatal signals too. By default none, as with the
 * compiler's own runtime: a program that has shut itself in may be killed for opening a file. */
#ifndef LLTCOV_ENDS_H
#define LLTCOV_ENDS_H

#include <signal.h>

/* Before the first module: reads the setting, and has quick_exit dump. */
void ends_set_up(void);

/* Has the signals that end the process by default dump before, where they count. */
void ends_watch_signals(void);

/* In the child of a fork, which has counters of its own. */
void ends_adopt_child(void);

/* Whether the action is that of ends_watch_signals, which is the default to everybody else. */
int ends_is_ours(const struct sigaction* action);

/* Before the runtime's code may go away: puts the default actions back. */
void ends_stop(void);

/* Dumps before the process ends, where such ends count, unless it shares its counters with another
 * process or has a copy that nobody told of: a child of vfork or of a bare clone. For wrap.c;
 * visible, so that all images of a process take the copy that they register with. */
#pragma GCC visibility push(default)
void lltcov_before_end(void);
#pragma GCC visibility pop

#endif
