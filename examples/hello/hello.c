/* hello NAME...: greets everybody, in Roman numbering. */
#include "greeting.h"

#include <stdio.h>

int main(int argc, char** argv)
{
    char text[80];
    char number[16];
    if (argc < 2)
        puts(greeting(text, sizeof text, NULL));
    for (int i = 1; i < argc && roman(number, sizeof number, i); i++)
        printf("%s. %s\n", number, greeting(text, sizeof text, argv[i]));
    return 0;
}
