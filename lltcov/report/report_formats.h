// The coverage of a project as a text for other tools.
#pragma once

#include "lltcov/report/coverage.h"

#include <string>
#include <utility>
#include <vector>

/// What a report is about.
struct Report {
    std::string root; ///< absolute path of the project
    Counting counting = Counting::branches;
    Coverage coverage; ///< by all runs
    /// By test name, where runs have one: first those without, with all objects.
    std::vector<std::pair<std::string, Coverage>> tests;
};

/// An lcov tracefile (geninfo(1) describes it), with functions under their assembler names. Where
/// tests have names each one has sections of its own, whose sum is the coverage. The branches of a
/// line are a block for each function that holds the line, with the same number in all sections.
/// The conditions of a line are one group, whose terms are numbered on; only a source's first
/// section has them, those of all tests.
std::string as_lcov(const Report& report);

/// JSON of our own: {"format": "lltcov", "version": 1, "project": ROOT, RATES, "sources": [{"path",
/// RATES, "line_counts": [[LINE, COUNT]], "function_counts": [{"name", "symbol", "line", "count"}],
/// "branch_counts": [{"line", "symbol", "branches": [{"count", "fallthrough", "throw"}]}],
/// "condition_outcomes": [{"line", "symbol", "conditions": [[{"true", "false"}]]}]}]}. RATES are
/// "lines", "functions", "branches" and "conditions", each {"hit", "total"}; "name" is readable,
/// "symbol" the assembler's. What is not counted is not there.
std::string as_json(const Report& report);

/// Cobertura XML by its coverage-04.dtd: packages are directories, classes are sources. Paths are
/// relative to the project where they are in it.
std::string as_cobertura(const Report& report);
