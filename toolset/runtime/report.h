/* The only lines that the runtime ever prints. */
#ifndef LLTCOV_REPORT_H
#define LLTCOV_REPORT_H

/* Remembers what standard error is at the start of the program: a daemon may put a file or a
 * connection of its own there later, which then gets no line. */
void report_prepare(void);

/* Says once per process that counts are lost, why, and what to do. */
void report_lost(const char* module, const char* root, int error);

/* Says once per process that something else failed: `what`, and the number of the error. */
void report_failure(const char* what, int error);

#endif
