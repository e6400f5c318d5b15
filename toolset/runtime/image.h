/* The dump file of a module in memory: its header, then the counts of the file that is merged
 * with. The counters themselves are never set back by a dump, for threads count on; so the image
 * also keeps what was dumped already. Called with the registry's lock held; only calls that are
 * safe in a signal handler. */
#ifndef LLTCOV_IMAGE_H
#define LLTCOV_IMAGE_H

#include "registry.h"

/* Whether something was counted since the last dump. */
int image_has_news(const struct module* module);

/* Reads the counters, and makes the image before the first dump. 1, or 0 with errno set. */
int image_update(struct module* module);

/* Adds to `words`, which are those of a file, what was counted since the last dump. */
void image_join(struct module* module);

/* The counts have been dumped. */
void image_commit(struct module* module);

#endif
