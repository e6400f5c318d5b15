/* Dumps at an interval and at a signal. */
#ifndef LLTCOV_POLICY_H
#define LLTCOV_POLICY_H

/* Starts the helper thread, or shortens its interval. */
void policy_start_timer(int seconds);

/* Dumps at the signal; once per signal number. */
void policy_watch_signal(int number);

/* In the child of a fork: the helper thread stayed with the parent. */
void policy_restart_in_child(void);

/* Before the runtime's code may go away: ends the thread, puts the signal handlers back. */
void policy_stop(void);

#endif
