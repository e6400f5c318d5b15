/* Dump files. Everything is called with the registry's lock held and uses only calls that are safe
 * in a signal handler. */
#ifndef LLTCOV_DUMP_H
#define LLTCOV_DUMP_H

#include "registry.h"

/* Writes the module's dump file if counts have changed since the last time. 1, or 0 when the file
 * could not be written. */
int dump_module(struct module* module);

/* Every module; 1 when all could be written. errno stays as it is. */
int dump_all_modules(void);

#endif
