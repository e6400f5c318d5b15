#ifndef ALL_H
#define ALL_H
#include <stdio.h>
#include <string.h>
static inline int length_of(const char* text)
{
    return text ? (int)strlen(text) : -1;
}
#endif
