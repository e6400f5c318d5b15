#ifndef ALL_H
#define ALL_H
#include <stdio.h>
#include <string.h>
static inline int length_of(const char* text)
{
    return text ? (int)strlen(text) : -1;
}
static inline int is_long(const char* text)
{
    return text && length_of(text) > 80; /* which nothing calls */
}
#ifdef __cplusplus
template <typename Value> Value larger(Value a, Value b)
{
    if (a > b)
        return a;
    return b;
}
#endif
#endif
