// The project that a call is about, with all that is counted of it.
#pragma once

#include "lltcov/common/command_line.h"
#include "lltcov/common/console.h"
#include "lltcov/report/project_data.h"

/// Modules and counts of the project that the command line names.
ProjectData read_project_data(const CommandLine& line, Findings& findings);

/// False, with a finding, for a project of which nothing was built through the wrapper.
bool has_modules(const ProjectData& data, Findings& findings);

/// Notes each library of which nothing can have run.
void note_left_out(const ProjectData& data, Findings& findings);

/// True for a static library of which nothing can have run: no link has taken it, and its objects
/// are in nothing else that has.
bool is_left_out(const ProjectData& data, const ModuleData& module);
