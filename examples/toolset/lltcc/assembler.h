// The assembler role: the wrapped compiler calls it where it would call its assembler.
#pragma once

#include "examples/toolset/common/process.h"

/// Assembles with counters instead of probes and leaves the records of the source; a text without
/// probes is assembled as it is. The exit status.
int run_assembler(const Words& arguments);
