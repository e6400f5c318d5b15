// The assembler role: the wrapped compiler calls it where it would call its assembler.
#pragma once

#include "toolset/common/process.h"

/// Assembles the text with the compiler's counters in the source's own array, and puts the source's
/// record into the object. The exit status; when the text cannot be understood it is 0 without an
/// object, and the driver role learns why.
int run_assembler(const Words& arguments);

/// Becomes the assembler that PATH has after this one, for a compile that looks for its programs in
/// our directory by itself. Throws `std::runtime_error` when there is none.
[[noreturn]] void run_next_assembler(char** argv);
