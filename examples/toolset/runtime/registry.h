/* The modules of the process and their counter arrays. Everything is guarded by one lock, and a
 * thread that holds it takes no signals: a handler may therefore take the lock as well. */
#ifndef LLTCOV_REGISTRY_H
#define LLTCOV_REGISTRY_H

#include <limits.h>
#include <signal.h>

/* How a counter array is laid out: COUNTERBYTES of the dump files. */
enum width { WIDTH_BIT = 0, WIDTH_BYTE = 1, WIDTH_WORD = 4 };

/* The counter array of one source. */
struct buffer {
    struct buffer* next;      /* in the module */
    struct buffer* same_slot; /* in the table of addresses */
    char* name;               /* its name in the merged table */
    void* data;               /* the array */
    unsigned int index;       /* its number in the merged table */
    unsigned int points;      /* number of probes */
};

/* A library or program that registered itself. */
struct module {
    struct module* next;
    char* name;
    char* area;                    /* work area */
    char* root;                    /* where its dumps go */
    char* project;                 /* null until it is known */
    char* buid;                    /* likewise */
    int mode;                      /* stub mode */
    struct buffer *first, **last;  /* the arrays in order of registration */
    unsigned long long dumped_sum; /* sum of all counts at the last dump, 0 before the first */
    char file[PATH_MAX];           /* the dump file of this process, empty before the first */
};

/* Takes the lock; the signal mask to give back goes to `mask`. */
void registry_lock(sigset_t* mask);
void registry_unlock(const sigset_t* mask);

/* The rest is called with the lock held. */

extern struct module* registry_modules;

/* A new module at the end of the list, or null. */
struct module* registry_add_module(const char* name, const char* area, const char* root, int mode);

/* Adds an array unless its address is known; 1, or 0 when there is no memory. */
int registry_add_buffer(struct module* module, const struct buffer* buffer);

/* Unlinks and frees the module. */
void registry_remove_module(struct module* module);

/* How the arrays of a stub mode are laid out. */
enum width width_of_mode(int mode);

/* Bytes of an array with so many probes. */
unsigned long long size_of_array(enum width width, unsigned int points);

/* Sets every counter to zero. */
void registry_zero_counters(void);

/* The module has no dump file yet: for the child of a fork. */
void registry_forget_files(void);

#endif
