#include "numbers/numbers.h"

#include <stdio.h>

static const char* const small[] = {
    "zero",     "one",     "two",     "three",     "four",     "five",     "six",
    "seven",    "eight",   "nine",    "ten",       "eleven",   "twelve",   "thirteen",
    "fourteen", "fifteen", "sixteen", "seventeen", "eighteen", "nineteen",
};
static const char* const tens[] = {
    "", "", "twenty", "thirty", "forty", "fifty", "sixty", "seventy", "eighty", "ninety",
};

/* Appends a word after the used bytes; from then on used counts it, even if it did not fit. */
static void append(char* text, size_t size, size_t* used, const char* word)
{
    size_t left = *used < size ? size - *used : 0;
    *used += (size_t)snprintf(left ? text + *used : NULL, left, "%s", word);
}

static void say(char* text, size_t size, size_t* used, int number)
{
    if (number >= 1000) {
        say(text, size, used, number / 1000);
        append(text, size, used, " thousand");
    } else if (number >= 100) {
        append(text, size, used, small[number / 100]);
        append(text, size, used, " hundred");
    } else if (number >= 20) {
        append(text, size, used, tens[number / 10]);
    } else {
        append(text, size, used, small[number]);
    }

    int unit = number >= 1000 ? 1000 : number >= 100 ? 100 : 10;
    int rest = number >= 20 ? number % unit : 0;
    if (rest == 0)
        return;
    append(text, size, used, unit == 10 ? "-" : rest < 100 ? " and " : " ");
    say(text, size, used, rest);
}

char* in_words(char* text, size_t size, int number)
{
    size_t used = 0;
    if (number < 0 || number > 999999)
        return NULL;
    say(text, size, &used, number);
    return used < size ? text : NULL;
}
