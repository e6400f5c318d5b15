/* Numbers as people write and say them. Each function writes into text (size bytes with the NUL)
   and returns text, or NULL when the number is out of range or the result does not fit. */
#ifndef NUMBERS_H
#define NUMBERS_H

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

/* 1 to 3999 as a Roman numeral: 1789 is "MDCCLXXXIX". */
char* roman(char* text, size_t size, int number);

/* 0 and above with its ending: "1st", "2nd", "11th". */
char* ordinal(char* text, size_t size, int number);

/* 0 to 999999 in words: "forty-two", "one thousand and one". */
char* in_words(char* text, size_t size, int number);

#ifdef __cplusplus
}
#endif

#endif
