/* Text output with nothing but calls that are safe in a signal handler: into a bounded buffer, or
 * through one into a file. */
#ifndef LLTCOV_OUT_H
#define LLTCOV_OUT_H

#include <stddef.h>

/* Where text goes. */
struct out {
    char* data;  /* the buffer */
    size_t size; /* its bytes */
    size_t used; /* bytes that wait in it */
    int fd;      /* where a full buffer goes; -1: nowhere, the text must fit */
    int failed;  /* 1 once something was lost; the rest is left out then */
};

/* Adds a text, and a number in decimal digits. */
void out_text(struct out* out, const char* text);
void out_number(struct out* out, unsigned long long number);

/* A name within a line: control characters become '?'. */
void out_name(struct out* out, const char* name);

/* Writes what waits; without effect for a bounded text. Signals must be blocked. errno tells why
 * it failed. */
void out_flush(struct out* out);

/* Ends a bounded text with a NUL; 1 when the whole text fits, else 0. */
int out_end(struct out* out);

#endif
