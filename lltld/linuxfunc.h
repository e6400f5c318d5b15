// The settings library: what the coverage side shares with the link drivers about the project
// being built and its objects.
#pragma once

#include "lltld/cov_paths.h"       // the map of the disk
#include "lltld/inst_file_list.h"  // the list of instrumented files
#include "lltld/module_compile.h"  // the module's recorded compile settings
#include "lltld/object_scan.h"     // coverage symbols in objects
#include "lltld/prj_settings.h"    // loading the settings, creating the work area
#include "lltld/program_objects.h" // objects that the program defines
#include "lltld/work_area.h"       // entering and emptying the work area
