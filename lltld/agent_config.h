// The configuration file of the coverage agent.
#pragma once

#include "lltld/source_tab.h"

/// Writes the module's agent configuration file: user settings, module settings and one entry per
/// record. Returns 1, or 0 (the file half written) when a record's numbered database directory is
/// missing. A list that no profile file holds is left out, with a warning.
int write_agent_config(const _SOURCEFILE_TAB& table);
