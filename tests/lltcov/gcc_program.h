// Programs that the system's gcc instruments and that count by themselves: what is known of their
// objects is taken from the files that they leave.
#pragma once

#include "contract/record.h"
#include "lltcov/report/coverage.h"

#include <string>

/// The object of a program that has run, and its counters.
struct GccObject {
    Record record;
    Counters counters;
    std::string data; ///< content of the data file, its stamp and checksum zeroed
};

/// Compiles the source text in the current directory as FILE, runs it once, and takes what it left.
/// Further words go to the compiler.
GccObject run_gcc_program(const std::string& file, const std::string& text,
                          const std::string& words = "");
