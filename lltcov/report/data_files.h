// Notes and data files for tools that read those of "gcc --coverage".
#pragma once

#include "lltcov/common/console.h"
#include "lltcov/report/project_data.h"

#include <string>

/// Writes notes and data of each of gcc's objects below the directory, under the object's path in
/// the project, else its whole path. What cannot be written or is left out goes to the findings.
void write_data_files(const ProjectData& data, const std::string& directory, Findings& findings);
