// The settings library: what the coverage side shares with the link drivers about the project
// being built.
#pragma once

#include "lltld/prj_settings.h"    // loading the settings, creating the work area
#include "lltld/program_objects.h" // objects that the program defines
