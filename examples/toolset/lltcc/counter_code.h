// The instructions that count.
#pragma once

#include "asm_rewrite.h"

#include <string>

/// Counts probe `index` at the place of a call, right behind one, or where a function begins: the
/// flags and the registers for code between caller and callee are free. Counters stay at their
/// largest value once they reach it, so that what ran never looks as if it had not. `index` also
/// makes local labels unique.
std::string count_at_call(Machine machine, const Rewriting& how, std::size_t index);

/// The same in the middle of other code: every register and flag keeps its value.
std::string count_anywhere(Machine machine, const Rewriting& how, std::size_t index);
