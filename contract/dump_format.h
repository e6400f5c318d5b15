/* Dump files: what the runs of programs left of one module. The coverage runtime writes and merges
 * them, dump_file.h reads them. In C99, for the runtime.
 *
 * A header of lines, each ended by a line feed, then binary. Blanks are separators, the last field
 * of a line may hold blanks (control characters in names are written as '?'):
 *
 *     lltcov 2                         format and its version
 *     module libdemo                   module name: its work area is PROJECT/libdemo/codemeasure
 *     project linuxcaddis              project name of the stub
 *     buid Q1121070512                 build id of the stub; the same as BUID in the area's .prj
 *     mode 1                           stub mode 0 to 9
 *     area /p/libdemo/codemeasure      the work area
 *     test list_of_one                 only where the run was of a named test
 *     order little                     byte order of what follows the header, or big
 *     file 0 demo_c_1a2b.c 48          INDEX SYMBOLFILE BYTES, in order of registration
 *     file 1 util_c_3c4d.c:16 32
 *     counts 88                        last line: bytes that follow
 *
 * Then come 64-bit words: the number of processes whose counts these are (one that unloads a
 * library and loads it again is counted once more), and the arrays, one after the other. A reader
 * skips lines whose first word it does not know. SYMBOLFILE up to its last full stop is the
 * coverage symbol. BYTES is a multiple of 8. The counters of two files, or of a file and a process,
 * add up, except those in the last N bytes of an array SYMBOLFILE:N, which join by "or". A source
 * that two modules of a process share is in one of the dumps only. A file of 0 bytes is a dump of
 * no run: who created it was killed. */
#ifndef CONTRACT_DUMP_FORMAT_H
#define CONTRACT_DUMP_FORMAT_H

/* The first line. */
#define DUMP_FORMAT "lltcov 2"

/* The first words of the others. */
#define DUMP_MODULE "module"
#define DUMP_PROJECT "project"
#define DUMP_BUID "buid"
#define DUMP_MODE "mode"
#define DUMP_AREA "area"
#define DUMP_TEST "test"
#define DUMP_ORDER "order"
#define DUMP_FILE "file"
#define DUMP_COUNTS "counts"

/* The byte orders. */
#define DUMP_LITTLE "little"
#define DUMP_BIG "big"

/* Between the name of a source and how many bytes at the end of its array join by "or". */
#define DUMP_OR_MARK ':'

/* Larger headers and sums of arrays are taken for a mistake, in bytes. The header has a line for
 * each source of a module: of this size, some hundred thousand. */
#define DUMP_MAX_HEADER (1ULL << 24)
#define DUMP_MAX_BYTES (1ULL << 31)

/* Bytes of a counter, and of the number of processes. */
#define DUMP_WORD 8

#endif
