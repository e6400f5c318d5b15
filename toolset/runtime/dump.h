/* When a dump is written. Everything is called with the registry's lock held and uses only calls
 * that are safe in a signal handler. */
#ifndef LLTCOV_DUMP_H
#define LLTCOV_DUMP_H

#include "registry.h"

/* Adds to the module's dump files what was counted since the last time. 1, or 0 when that could
 * not be written. */
int dump_module(struct module* module);

/* Every module; 1 when all could be written. errno stays as it is. */
int dump_all_modules(void);

#endif
