// The stub role: compiles the stub of a module.
#pragma once

#include "toolset/common/process.h"

/// The word that chooses the role, the first one after the program's name.
inline constexpr const char STUB_ROLE[] = "-stub";

/// Runs the compile of a stub, whose words follow `STUB_ROLE`, so that the counter arrays that the
/// stub defines are aligned as counters need it. The exit status.
int run_stub_compile(const Words& arguments);
