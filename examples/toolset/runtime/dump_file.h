/* Where a dump goes: a file that appears whole or not at all. Called with the registry's lock held;
 * only calls that are safe in a signal handler. */
#ifndef LLTCOV_DUMP_FILE_H
#define LLTCOV_DUMP_FILE_H

#include "registry.h"

/* Opens a file beside the module's dump file, which its root's directory is created for. Returns
 * its descriptor, or -1 with errno set. The next call of dump_file_publish or dump_file_discard
 * means this file. */
int dump_file_open(const struct module* module);

/* Gives the file its place: ROOT/MODULE.PID.BUID.COUNTER.lltcov, where an earlier dump of the
 * process is replaced. 1, or 0 with errno set. */
int dump_file_publish(struct module* module);

void dump_file_discard(void);

#endif
