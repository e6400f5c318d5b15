/* Text and files with nothing but calls that are safe in a signal handler. */
#ifndef LLTCOV_OUT_H
#define LLTCOV_OUT_H

#include <stddef.h>

/* A text that is made piece by piece. What does not fit is left out, but counted. */
struct out {
    char* data;  /* where it goes */
    size_t size; /* the room there */
    size_t used; /* bytes of the text so far */
};

/* Adds a text, and a number in decimal digits. */
void out_text(struct out* out, const char* text);
void out_number(struct out* out, unsigned long long number);

/* Adds a name within a line: control characters become '?'. */
void out_name(struct out* out, const char* name);

/* Ends the text with a NUL; 1 when the whole text fits, else 0. */
int out_end(struct out* out);

/* Writes all of the data. Signals must be blocked. 1, or 0 with errno set. */
int write_all(int fd, const char* data, size_t size);

#endif
