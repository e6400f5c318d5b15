/* The modules of the process and their counter arrays. Everything is guarded by one lock, and a
 * thread that holds it takes no signals: a handler may therefore take the lock as well. */
#ifndef LLTCOV_REGISTRY_H
#define LLTCOV_REGISTRY_H

#include <signal.h>
#include <stddef.h>
#include <stdint.h>

/* The counter array of one source. */
struct buffer {
    struct buffer* next;      /* in the module */
    struct buffer* same_slot; /* in the table of addresses */
    const char* name;         /* its name in the merged table */
    volatile uint64_t* data;  /* the array */
    size_t words;             /* its counters */
    size_t or_words;          /* those at its end, which two runs join by "or" */
    unsigned int index;       /* its number in the merged table */
};

/* The dump file of a module in memory (image.h). All of it is one mapping, which is made for the
 * first dump. */
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

/* A library or program that registered itself. */
struct module {
    struct module* next;
    char* name;                   /* this and the next three follow the structure */
    char* area;                   /* work area */
    char* root;                   /* where its dumps go; empty: there is no such place */
    char* test;                   /* name of the test that runs, or null */
    char* project;                /* null until it is known */
    char* buid;                   /* likewise */
    int mode;                     /* stub mode */
    int is_complete;              /* it will get no more arrays */
    struct buffer *first, **last; /* the arrays in order of registration */
    struct image image;           /* of its dump file */
};

/* Takes the lock; the signal mask to give back goes to `mask`. */
void registry_lock(sigset_t* mask);
void registry_unlock(const sigset_t* mask);

/* The rest is called with the lock held, but for registry_add_buffer. */

extern struct module* registry_modules;

/* A new module at the end of the list, or null. `test` may be null. */
struct module* registry_add_module(const char* name, const char* area, const char* root,
                                   const char* test, int mode);

/* Adds an array unless its address is known; 1, or 0 when there is no memory. Without the lock, for
 * there are many arrays: nobody dumps a module that is not complete, and the loader runs the
 * constructors and destructors of images, which add and remove, one after the other. */
int registry_add_buffer(struct module* module, const struct buffer* buffer);

/* Unlinks and frees the module. */
void registry_remove_module(struct module* module);

/* Sets every counter to zero. */
void registry_zero_counters(void);

/* Nothing of this process is in a dump file yet: for the child of a fork. */
void registry_forget_dumps(void);

#endif
