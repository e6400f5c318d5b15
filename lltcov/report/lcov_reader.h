// Coverage as LLVM's tools print it.
#pragma once

#include "lltcov/report/coverage.h"

#include <string_view>

/// Reads a tracefile of `llvm-cov export -format=lcov`. Each decision of a line is a block of its
/// own, named by its number within the line: the text does not say whose function it is of. Throws
/// `FormatError` for what is cut or not understood.
Coverage read_lcov(std::string_view text);
