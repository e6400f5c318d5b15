/* Where a dump goes: into one of a few files, which runs of the same header share. Called with the
 * registry's lock held; only calls that are safe in a signal handler. */
#ifndef LLTCOV_DUMP_FILE_H
#define LLTCOV_DUMP_FILE_H

#include "registry.h"

/* Adds the news of the module's image to a file ROOT/MODULE.BUID.HASH.SLOT.lltcov, whose directory
 * is created; where none can be had, writes one that only this process has:
 * ROOT/MODULE.BUID.HASH.PID.TIME.lltcov. 1, or 0 with errno set. */
int dump_file_write(struct module* module);

#endif
