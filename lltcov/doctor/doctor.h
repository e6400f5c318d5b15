// The checks of "lltcov doctor". Each adds what it finds to the findings: a line that says what is
// wrong, where, and how to cure it, by a command to type where there is one. They only read.
#pragma once

#include "lltcov/common/console.h"
#include "lltcov/report/project_data.h"

#include <string>
#include <vector>

/// What the checks look at, beside environment and PATH.
struct Examined {
    ProjectData data;
    std::vector<std::string> files; ///< regular files below the project's directory
};

/// The end of a finding: "; WHERE, type: COMMAND".
std::string cured_by(const std::string& command, const std::string& where = "");

/// The command that takes the settings of TUSK_INIT.SH into the shell.
std::string settings_command();

// --- environment

/// True when none of the settings is set: they are there while "lltcov run" runs a build.
bool has_no_settings();

void check_project_path(Examined& examined, Findings& findings); ///< "qmr_current_prj_path"
void check_settings(Examined& examined, Findings& findings);     ///< the other variables
void check_places(Examined& examined, Findings& findings);       ///< what is written into

// --- programs

void check_programs(Examined& examined, Findings& findings); ///< wrapper, drivers, runtime, tools
void check_shims(Examined& examined, Findings& findings);    ///< and the switch "LLT_WRAP"

// --- what the build and the runs left

void check_builds(Examined& examined, Findings& findings);    ///< configured for other compilers
void check_sources(Examined& examined, Findings& findings);   ///< edited since they were compiled
void check_objects(Examined& examined, Findings& findings);   ///< gone, or compiled anew
void check_archives(Examined& examined, Findings& findings);  ///< without a stub, of equal stem
void check_names(Examined& examined, Findings& findings);     ///< too long, no C identifier
void check_sockets(Examined& examined, Findings& findings);   ///< stubs that start a server
void check_dumps(Examined& examined, Findings& findings);     ///< damaged, of another build, none
void check_leftovers(Examined& examined, Findings& findings); ///< of interrupted steps
