/* A stub uses nothing of this header; see stdio.h. */
#ifndef LLTCC_STUB
#include_next <stdlib.h>
#endif
