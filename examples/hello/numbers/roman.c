#include "numbers/numbers.h"

#include <string.h>

static const struct {
    int value;
    const char* digits;
} steps[] = {
    {1000, "M"}, {900, "CM"}, {500, "D"}, {400, "CD"}, {100, "C"}, {90, "XC"}, {50, "L"},
    {40, "XL"},  {10, "X"},   {9, "IX"},  {5, "V"},    {4, "IV"},  {1, "I"},
};

char* roman(char* text, size_t size, int number)
{
    size_t used = 0;
    if (number < 1 || number > 3999)
        return NULL;
    for (size_t i = 0; i < sizeof steps / sizeof *steps; i++) {
        size_t length = strlen(steps[i].digits);
        for (; number >= steps[i].value; number -= steps[i].value) {
            if (used + length >= size)
                return NULL;
            memcpy(text + used, steps[i].digits, length);
            used += length;
        }
    }
    text[used] = '\0';
    return text;
}
