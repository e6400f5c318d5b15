/* What the parts of the test program share. */
#ifndef RUNTIME_PROGRAM_H
#define RUNTIME_PROGRAM_H

/* What the first argument names; argv is the process's own. */
typedef void action(char** argv);

/* Counts. */
void hit(int counter);

/* Loads the library and calls what counts in it. */
void* load_plugin(const char* path);

/* What becomes another program. */
action by_exec, vfork_exec, exec_from_loaded;

#endif
