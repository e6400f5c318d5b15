/* The dump file of a module in memory: its header, then the counts of the file that is merged
 * with. The counters themselves are never set back by a dump, for threads count on; so the image
 * also keeps what was dumped already. Called with the registry's lock held; only calls that are
 * safe in a signal handler. */
#ifndef LLTCOV_IMAGE_H
#define LLTCOV_IMAGE_H

#include <stddef.h>
#include <stdint.h>

struct module;

/* All of it is one mapping, which is made for the first dump. */
struct image {
    void* mapping;      /* null before */
    size_t size;        /* bytes of the mapping */
    char* header;       /* the text; `words` follow it at once, so that one write has both */
    size_t header_size; /* bytes */
    uint64_t hash;      /* a number that stands for the header */
    char* file_header;  /* room for the header of a file */
    uint64_t* words;    /* number of processes, then every counter of the module */
    size_t word_count;  /* of `words` */
    uint64_t* current;  /* the counters as image_update found them */
    uint64_t* dumped;   /* the counters as they were dumped last */
    int has_dumped;     /* 0: nothing was, and `dumped` means nothing */
    int is_counted;     /* the process is in the number of processes */
};

/* Whether something was counted since the last dump. */
int image_has_news(const struct module* module);

/* Reads the counters, and makes the image before the first dump. 1, or 0 with errno set. */
int image_update(struct module* module);

/* Adds to `words`, which are those of a file, what was counted since the last dump. */
void image_join(struct module* module);

/* The counts have been dumped. */
void image_commit(struct module* module);

/* Gives the memory back. */
void image_release(struct image* image);

#endif
