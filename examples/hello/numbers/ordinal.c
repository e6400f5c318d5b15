#include "numbers/numbers.h"

#include <stdio.h>

static const char* ending(int number)
{
    int teen = number / 10 % 10 == 1;
    switch (teen ? 0 : number % 10) {
    case 1:
        return "st";
    case 2:
        return "nd";
    case 3:
        return "rd";
    default:
        return "th";
    }
}

char* ordinal(char* text, size_t size, int number)
{
    if (number < 0)
        return NULL;
    int length = snprintf(text, size, "%d%s", number, ending(number));
    return (size_t)length < size ? text : NULL;
}
