#include "greeting.h"

#include <stdio.h>

char* greeting(char* text, size_t size, const char* name)
{
    const char* who = name && *name ? name : "world";
    snprintf(text, size, "Hello, %s!", who);
    return text;
}
