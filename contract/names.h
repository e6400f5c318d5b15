/* Names and limits that the drivers, the archive step with its stub, the coverage runtime and
 * lltcov agree on. In C99, for the runtime; macros, so that they join with other literals. */
#ifndef CONTRACT_NAMES_H
#define CONTRACT_NAMES_H

/* What the counter array of a coverage symbol is called: this, and the symbol. */
#define ARRAY_PREFIX "g_QMRCovData_"

/* Longest coverage symbol whose own table the archive step finds, in bytes. */
#define MAX_SYMBOL 31

/* What the stub of a module is called, as file and as member: this, and the module's name. */
#define STUB_PREFIX "__code_measure_stub_lib_"

/* The function of a stub that registers its module: this, and the module's name as an identifier.
 * An object that holds the text is a test loader. */
#define TEST_LOADER_PREFIX "ZJ_Start_"

/* The directory of a module, or of the temporary area, that holds everything. */
#define AREA_NAME "codemeasure"

/* The directory of the project that compiles of all modules share, and the project that compiler
 * drivers are told. */
#define TEMPORARY_NAME "LLTTEMP"

/* How the wrapper calls a driver: these with a value each, in this order, and then the command. */
#define PROJECT_OPTION "-qmr_current_prj_path"
#define NAME_OPTION "-projectname"
#define MODE_OPTION "-qmr_coverage_stub_mold"

/* The directory that the settings give a project for all that the tool set writes. */
#define OWN_DIRECTORY ".lltcov"

/* The end of a dump file's name, and what follows it in that of the file beside it. */
#define DUMP_SUFFIX ".lltcov"
#define SPARE_SUFFIX ".tmp"

/* The directory for dumps of a project that names none. */
#define DUMP_DIRECTORY "llt_result"

#endif
