// The compiler driver role: runs the wrapped compiler so that its assembler is this program.
#pragma once

#include "examples/toolset/common/process.h"

/// The directory that holds this program as `as`, gcc's specs and the stubs' headers: beside the
/// program in the build tree, under ../lib when installed. Empty when there is none.
std::string tools_directory();

/// Runs the command given by the words after the program's name; the exit status.
int run_driver(const Words& arguments);
