/* The rules of the stub modes, side by side. In C99, for the coverage runtime too.
 *
 * Counters have 8 bytes in every mode. The mode says who defines the arrays that hold them, and the
 * unit in which tables and stubs state their sizes: as a number of points. */
#ifndef CONTRACT_STUB_MODES_H
#define CONTRACT_STUB_MODES_H

#include <stdint.h>

/* They are numbered from 0. */
enum { LAST_STUB_MODE = 9 };

/* What a point of an array takes. */
enum PointWidth {
    POINT_IS_BIT, /* of 32-bit words */
    POINT_IS_BYTE,
    POINT_IS_WORD /* 4 bytes */
};

/* Who defines the arrays of a module. */
enum ArrayOwner {
    ARRAYS_OF_NOBODY, /* the stub does not even declare them */
    ARRAYS_OF_STUB,
    ARRAYS_OF_OBJECTS /* the stub declares them only */
};

/* The rules of one stub mode. They come from different places of the runtime's history, so they do
 * not agree with each other; each is what its reader expects. */
struct CounterMode {
    enum PointWidth point;
    enum ArrayOwner owner;
    int rounds_start;    /* the next source's start index is rounded up to a multiple of 32 */
    int bytes_per_point; /* stated at registration; 0 stands for bits in 32-bit words */
    int recorded_mode;   /* "coverage_counter_mode" of the project file */
};

/* The rules of a stub mode; every number has some. Kept: 4 packs its array but does not round its
 * start index, and 4, 6, 7 and 9 register four bytes per point although their arrays are smaller.
 */
static inline struct CounterMode counter_mode(int stub_mode)
{
    static const struct CounterMode MODES[LAST_STUB_MODE + 1] = {
        /* point       owner              rounds bytes recorded */
        {POINT_IS_BIT, ARRAYS_OF_STUB, 1, 0, 0},     /* 0 */
        {POINT_IS_WORD, ARRAYS_OF_STUB, 0, 4, 1},    /* 1 */
        {POINT_IS_BYTE, ARRAYS_OF_STUB, 0, 1, 2},    /* 2 */
        {POINT_IS_WORD, ARRAYS_OF_NOBODY, 0, 4, 3},  /* 3 */
        {POINT_IS_BIT, ARRAYS_OF_STUB, 0, 4, 4},     /* 4 */
        {POINT_IS_WORD, ARRAYS_OF_OBJECTS, 0, 4, 5}, /* 5 */
        {POINT_IS_BYTE, ARRAYS_OF_STUB, 0, 4, 6},    /* 6 */
        {POINT_IS_BIT, ARRAYS_OF_OBJECTS, 1, 4, 0},  /* 7: 0, defined elsewhere */
        {POINT_IS_WORD, ARRAYS_OF_OBJECTS, 0, 4, 1}, /* 8: 1, defined elsewhere */
        {POINT_IS_BYTE, ARRAYS_OF_OBJECTS, 0, 4, 2}, /* 9: 2, defined elsewhere */
    };
    struct CounterMode mode = {POINT_IS_WORD, ARRAYS_OF_NOBODY, 0, 4, stub_mode};
    if (stub_mode >= 0 && stub_mode <= LAST_STUB_MODE) {
        mode = MODES[stub_mode];
    }
    return mode;
}

/* Bytes of the array of a source with so many points. */
static inline uint64_t size_of_array(int stub_mode, uint32_t points)
{
    switch (counter_mode(stub_mode).point) {
    case POINT_IS_BIT:
        return ((uint64_t)points + 31) / 32 * 4;
    case POINT_IS_BYTE:
        return points;
    default:
        return (uint64_t)4 * points;
    }
}

/* How many points an array of so many bytes has. */
static inline int32_t points_of_array(int stub_mode, uint32_t bytes)
{
    switch (counter_mode(stub_mode).point) {
    case POINT_IS_BIT:
        return (int32_t)(8 * bytes);
    case POINT_IS_BYTE:
        return (int32_t)bytes;
    default:
        return (int32_t)(bytes / 4);
    }
}

#endif
