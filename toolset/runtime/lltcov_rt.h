/* The coverage runtime: keeps the counter arrays of a process and writes them to dump files.
 *
 * A program that ends by itself needs nothing of this header: the stub that the archive step or the
 * link driver makes calls everything. Include it for lltcov_dump, in programs that end another way.
 *
 * Where the dumps go: the directory of the environment variable LLTCOV_ROOT when that is set and
 * not empty; else the root that the stub names; else "llt_result" beside the module's work area.
 * It is created when it is missing. What a dump file holds is described in lltwrapper-formats(5).
 *
 * The runtime prints nothing and leaves exit statuses alone. Only when counts are lost, because no
 * dump file can be written, one line of the process on standard error says so, and none if the
 * program has put another file or connection there. A test that runs as another user, in another
 * root directory or on another machine wants LLTCOV_ROOT=DIRECTORY that it can write.
 *
 * The counts of all runs are added up in a few files. With LLTCOV_TEST=NAME in the environment a
 * process adds to files that only processes with the same NAME share.
 *
 * What counts:
 *   - exit        dumped by the stub's destructor and once more, if counts have changed since,
 *                 after the last destructor of the program
 *   - _exit, _Exit   with LLTCOV_ENDS=calls or =all in the environment dumped before the call, in
 *                 code that is linked with coverage; a program that may open no files (seccomp) may
 *                 be killed for it
 *   - quick_exit  likewise, after the handlers of the program
 *   - abort, a fatal signal   dumped with LLTCOV_ENDS=all in the environment, unless the program
 *                 handles the signal itself; the process then ends with the same status as without.
 *                 After a stack overflow only in a thread with an alternate stack; this runtime
 *                 gives the first thread one
 *   - SIGKILL     nothing is dumped: call lltcov_dump before, or have a timer dump (the setting
 *                 TimerPolicy)
 *   - fork        the parent's counts are dumped and the child begins at zero, so that no count is
 *                 reported twice and none is lost when either ends by _exit
 *   - vfork       the child shares the parent's counters, as it shares all its memory: its end
 *                 dumps nothing
 *   - exec        dumped before execl, execlp, execle, execv, execvp and execve in code of gcc,
 *                 which calls functions of this runtime in their place; not in code of clang, not
 *                 before execvpe and fexecve, not where the C library itself replaces the program
 *   - dlclose     the library's counts are dumped, then forgotten
 *   - threads     all count into the same arrays; whether two increments at one instant count as
 *                 two is the compiler's choice (-fprofile-update)
 *
 * Programs that call __gcov_dump or __gcov_reset, as they may with the compiler's own runtime, get
 * lltcov_dump and lltcov_reset.
 */
#ifndef LLTCOV_RT_H
#define LLTCOV_RT_H

#ifdef __cplusplus
extern "C" {
#endif

#pragma GCC visibility push(default)

/* Writes the counts of every module of the process. To be called before _exit or at any time, by
 * several threads too, and from a signal handler unless that interrupts dlopen or dlclose. Returns
 * 1, or 0 when a file could not be written (a line on standard error says so once). errno stays as
 * it is. */
int lltcov_dump(void);

/* Sets all counters of the process to zero; files that were written stay as they are. Returns 1. */
int lltcov_reset(void);

/* --- what the generated stub calls, in this order --- */

/* Accepted and without effect here: this runtime writes the same file on every platform. */
void TUSK_CovSetCompilePolicy(int overlappedCompile);

/* A helper thread dumps every so many seconds; the shortest interval of all modules counts. Also
 * in children of a fork. An interval below 1 is ignored. */
void TUSK_CovSetTimerPolicy(int time_interval);

/* Dumps when the signal arrives. Afterwards the signal does what it would have done before this
 * call: a handler that was there is called, a signal that ends the process ends it. SIGUSR1,
 * SIGUSR2, real-time signals and those that are ignored by default only dump. A handler that the
 * program installs itself later replaces this one. */
void TUSK_CovSetSignalPolicy(int signal_no);

/* Accepted and without effect here. */
void TUSK_CovSetSupportVbsFlag(unsigned int uiFlag);

/* The root of the modules that are created from now on. A relative path is taken from the
 * directory in which the program starts. */
void TUSK_CovSetlltcovRootpath(const char* rootpath);

/* Begins a module: its name, work area, number of sources, and stub mode + 1. Returns a handle for
 * QMR_AddCoverageBuf, or null when there is no memory. */
void* QMR_CreateCoverageListExt(const char* pModName, const char* covdbpath, unsigned long iCount,
                                int iClass);

/* Adds the counters of one source: its number in the module's merged table, its name there, the
 * array and its size in bytes, and its size in the unit of the stub mode: 4 bytes, one byte (modes
 * 2, 6, 9) or one bit (modes 0, 4, 7). The array holds whole counters, 64-bit words. "S.EXT:N" as a
 * name says that those in its last N bytes join two runs by "or"; all others add up. Array and name
 * must live until QMR_DumpModuleCovdata is called for the module. An array that is known already is
 * not counted twice. Returns 1, or 0 when it was not added. */
int QMR_AddCoverageBuf(void* pMod, unsigned int iFileId, char* pFileName, unsigned int* pCovBuf,
                       unsigned int iBufSize, unsigned int iInstSize);

/* Names project and build of the modules created before, a JSON object with the members
 * "projectname" and "buid": they are complete now, and dumps begin. Returns 1. */
int QMRInit(int iType, char* pProjName);

/* A flag that the stubs of a process share: 0 until one of them has set it. */
int QMRGetTargetState(void);
void QMRSetTargetState(int state);

/* A program's own settings before the first module is active. Weak and empty here: define a
 * function of this name to have it called. */
void TUSK_UserAgentConfig(void);

/* This runtime has no server: opens nothing and returns 1. */
int ZKT_ServerInit(unsigned int iHostPort);

/* The port that stubs of static libraries hand to ZKT_ServerInit. Weak: a program may define it. */
extern unsigned short g_TUSKSockBindPort;

/* Dumps the modules of this name ('-' and '_' count as equal) and forgets them: their arrays may
 * go away with the library that holds them. */
void QMR_DumpModuleCovdata(char* modulename);

#pragma GCC visibility pop

#ifdef __cplusplus
}
#endif

#endif
