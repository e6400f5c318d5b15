/* The copies of the runtime in one process. A program and each of its libraries may hold one, and
 * where a library hides its symbols (a version script, for example) the copies are separate: fork,
 * signals, the timer and exit reach each of them by its own, but an exec or a call of lltcov_dump
 * happens in one of them and must reach all. */
#ifndef LLTCOV_COPIES_H
#define LLTCOV_COPIES_H

/* Dumps the modules of every copy; 1 when all could be written. */
int copies_dump(void);

/* Sets the counters of every copy to zero. */
void copies_reset(void);

/* The same for this copy alone. */
int this_copy_dump(void);
int this_copy_reset(void);

#endif
