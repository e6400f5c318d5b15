// What the wrapper will do with a command, known before anything is made or run. The wrapper
// performs it, others show it.
#pragma once

#include "lltwrapper/archive_prepare.h"
#include "lltwrapper/classify.h"

#include <string>
#include <vector>

/// What is known of a step before anything is made or run.
struct Plan {
    Decision decision;
    Mode mode = Mode::unchanged; ///< as decided, but `unchanged` for an archive without coverage
    ArchivePlan archive;         ///< in archive mode
};

/// Decides, and looks at the archive of an archive step. Sets exactly one of the mode flags, the
/// names and the token as decided; prints decisions about kernel targets.
Plan plan_step(const std::vector<std::string>& arguments, EnterWorkArea enter);

/// Plans the step that argument 1 to the last are, with its work area created and locked, and
/// registers the coverage symbols of an archive's members. `parser` calls it once, after the
/// command has been rebuilt.
void checkstate(int argc, char** argv);
