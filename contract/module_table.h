/* The table that describes a link's module to the runtime: an object of data alone, which the link
 * driver adds to each module. It writes the table as a text for the compiler's assembler
 * (toolset/linkdriver/module_table.cpp), in the order of these members, which have the same places
 * on every target: addresses first. */
#ifndef CONTRACT_MODULE_TABLE_H
#define CONTRACT_MODULE_TABLE_H

#include <stdint.h>

/* A source of the module. Its number is its place in the list. */
struct lltcov_source {
    const char* name; /* in the module's merged table */
    void* array;      /* null when nothing defines it */
    uint32_t bytes;   /* of the array, as `QMR_AddCoverageBuf` takes them */
    uint32_t points;
};

struct lltcov_module {
    void (*start)(void); /* makes the link take the code that reads this */
    const char* name;
    const char* area;  /* the work area */
    const char* root;  /* of dumps; null for none */
    const char* build; /* JSON: "projectname" and "buid" */
    const struct lltcov_source* sources;
    uint32_t number; /* of sources */
    uint32_t mode;   /* the stub mode */
    uint32_t has_timer, timer_interval;
    uint32_t has_signal, signal_number;
    uint32_t asks_program; /* for settings, by TUSK_UserAgentConfig */
    uint32_t reserved;
};

#endif
