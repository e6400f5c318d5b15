/* What a stub uses of this header; all others that a stub's compile reads see the C
   library's own. */
#ifdef LLTCC_STUB
#ifndef NULL
#define NULL ((void*)0)
#endif
#ifdef __cplusplus
extern "C"
#endif
    int
    printf(const char* format, ...);
#else
#include_next <stdio.h>
#endif
