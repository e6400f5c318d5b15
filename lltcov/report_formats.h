// The coverage as texts for other tools.
#pragma once

#include "lltcov/coverage.h"

#include <string>

/// An lcov tracefile (geninfo(1) describes it), with functions under their assembler names.
std::string as_lcov(const Coverage& coverage);
