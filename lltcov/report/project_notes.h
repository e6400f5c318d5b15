// What is worth a line about a project's data without being a problem.
#pragma once

#include "lltcov/common/console.h"
#include "lltcov/common/project.h"
#include "lltcov/report/project_data.h"

#include <string>

/// True for a static library of which nothing can have run: no link has taken it, and its objects
/// are in nothing else that has.
bool is_left_out(const ProjectData& data, const ModuleData& module);

/// Notes each such library.
void note_left_out(const ProjectData& data, Findings& findings);

/// Notes where programs write that were linked before the project moved, when they have. `dumps`
/// is the directory that is read.
void note_old_places(const PathMaps& maps, const std::string& dumps, Findings& findings);
