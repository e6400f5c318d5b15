/* What the library offers. */
#ifndef GREETING_H
#define GREETING_H

#include <stddef.h>

/* Writes "Hello, NAME!" into text (size bytes with the NUL); NULL or "" greets the world.
   Returns text. A greeting that does not fit is cut. */
char* greeting(char* text, size_t size, const char* name);

/* Writes number, 1 to 3999, as a Roman numeral; returns text, or NULL when the number is out
   of range or the numeral does not fit. */
char* roman(char* text, size_t size, int number);

#endif
