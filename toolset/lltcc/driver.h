// The compiler driver role: runs the wrapped compiler so that its assembler is this program.
#pragma once

#include "toolset/common/process.h"

/// Runs the command given by the words after the program's name; the exit status.
int run_driver(const Words& arguments);
