// The coverage of a project as a text for other tools.
#pragma once

#include "lltcov/coverage.h"

#include <string>

/// What a report is about.
struct Report {
    std::string root; ///< absolute path of the project
    Coverage coverage;
};

/// An lcov tracefile (geninfo(1) describes it), with functions under their assembler names.
std::string as_lcov(const Report& report);

/// JSON of our own: {"format": "lltcov", "version": 1, "project": ROOT, "lines": RATE, "functions":
/// RATE, "sources": [{"path", "lines": RATE, "functions": RATE, "line_counts": [[LINE, COUNT]],
/// "function_counts": [{"name", "symbol", "line", "count"}]}]}; RATE is {"hit", "total"}, "name" is
/// readable, "symbol" the assembler's.
std::string as_json(const Report& report);

/// Cobertura XML by its coverage-04.dtd: packages are directories, classes are sources. Paths are
/// relative to the project where they are in it. Branches are not measured.
std::string as_cobertura(const Report& report);
