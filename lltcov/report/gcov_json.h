// What gcov says of an object in its JSON format.
#pragma once

#include "lltcov/report/coverage.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// The result for one data file.
struct GcovResult {
    std::string data_file;                                       ///< as gcov was called with it
    std::string directory;                                       ///< where the compiler ran
    std::vector<std::pair<std::string, SourceCoverage>> sources; ///< by the recorded path
};

/// Reads the text of one data file. Throws `std::runtime_error` for what is not such a text.
GcovResult read_gcov_json(std::string_view text);
