/* The file of a dump and the one beside it: names, and what is done with files in general. */
#ifndef LLTCOV_PLACE_H
#define LLTCOV_PLACE_H

#include "registry.h"

#include <limits.h>
#include <stddef.h>

/* Where a dump goes. */
struct place {
    int directory; /* in which the paths are looked up, when they are relative */
    char path[PATH_MAX];
    char beside[PATH_MAX]; /* the file that is written first and then takes the place of `path` */
};

/* Before the first name, and after the last. 1, or 0 with errno set: there is no root, or its
 * directory must not be written. */
int place_enter(struct place* place, const struct module* module);
void place_leave(struct place* place);

/* Sets both paths for ROOT/MODULE.BUID.HASH.NAME.lltcov. 1; 0, with errno set, when one is too
 * long. */
int place_name(struct place* place, const struct module* module, const char* name);

/* Opens a file of the place that may be missing, with its directory, and no link to somewhere else.
 * The descriptor is above those of the standard streams, which the program may have closed. */
int open_or_create(const struct place* place, char* file, int flags);

/* How many bytes the image has as a file. */
size_t size_of_file(const struct image* image);

/* Writes the image to the file beside and closes it. 1; 0, with errno set, when that fails: the
 * file is removed then. */
int place_write(const struct place* place, int fd, const struct image* image);

#endif
