// The subcommands. Each takes the arguments after its name and returns the exit status of the
// process: 0, 1 when it found or failed at something; it throws `UsageError` for a wrong call.
#pragma once

#include <string>
#include <vector>

using Arguments = std::vector<std::string>;

/// Prints what the wrapper would do with a command, by the wrapper's own classification.
int run_explain(const Arguments& arguments);

/// Prints what is missing or odd, each with its cure; 1 when it found something.
int run_doctor(const Arguments& arguments);

/// Writes the coverage of all runs as lcov tracefile, JSON or Cobertura XML, or as the files that
/// gcov reads.
int run_export(const Arguments& arguments);

/// Draws the coverage of all runs as HTML pages.
int run_report(const Arguments& arguments);

/// Prints the modules of the project with their hit rates.
int run_status(const Arguments& arguments);

/// Takes the counts that programs of the project have written on other machines.
int run_merge(const Arguments& arguments);

/// Prints which tests reach a line, which alone reach one, or all of them.
int run_tests(const Arguments& arguments);

/// Prints the changed lines of a diff with their counts.
int run_diff(const Arguments& arguments);

/// Removes the counts of all runs, or everything that the wrapped build left.
int run_clean(const Arguments& arguments);

/// Writes the shims into a directory.
int run_shims(const Arguments& arguments);

/// Runs a command with the project's settings, its tools through the wrapper; its own exit status.
int run_run(const Arguments& arguments);
