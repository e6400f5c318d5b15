// Which gcov reads an object: it must be of the compiler's major version, and need not be of the
// compiler's target.
#pragma once

#include "lltcov/report/child_process.h"

#include <cstdint>
#include <map>
#include <string>
#include <utility>

/// The major version that a gcov prints of itself by "--version"; 0 for the text of another
/// program.
int gcov_major(const std::string& version_text);

/// Finds gcovs. Each program is asked for its version once.
class GcovChoice
{
public:
    /// The one for notes with this version word: `recorded`, which the compiler driver found beside
    /// the compiler, else gcov-MAJOR on PATH, else gcov. Empty when none of them has the version.
    const std::string& program_for(const std::string& recorded, std::uint32_t version);

private:
    int major_of(const std::string& program);

    TemporaryDirectory directory_;
    std::map<std::string, int> majors_; ///< by program
    std::map<std::pair<std::string, int>, std::string> choices_;
};

/// What is missing where there is none, and the package that brings it.
std::string missing_gcov(const std::string& recorded, std::uint32_t version);
