/* What happens to the process: fork, exec, exit. */
#ifndef LLTCOV_PROCESS_H
#define LLTCOV_PROCESS_H

/* Before the first module: prepares for what follows. */
void process_set_up(void);

/* Whether the program has begun to end: its destructors run. */
int process_is_exiting(void);

#endif
