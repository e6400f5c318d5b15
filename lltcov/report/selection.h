// Which part of a project's coverage is shown: chosen sources, without what comments exclude; and
// the rates that it must reach.
#pragma once

#include "lltcov/common/command_line.h"
#include "lltcov/common/console.h"
#include "lltcov/report/coverage.h"

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

/// The flags and the options with values of a subcommand that takes a selection, added to its own.
std::vector<std::string> with_selection_flags(std::vector<std::string> flags);
std::vector<std::string> with_selection_options(std::vector<std::string> options);

/// True when the call selects something or wants a rate.
bool takes_selection(const CommandLine& line);

/// The lines that comments of a source exclude. The marks are those of geninfo(1), which gcovr
/// knows as well: LCOV_EXCL_LINE, LCOV_EXCL_START to before LCOV_EXCL_STOP, and the same with
/// LCOV_EXCL_BR_ for branches alone; "GCOV" and "GCOVR" may stand for "LCOV".
struct ExcludedLines {
    std::set<std::uint32_t> all;
    std::set<std::uint32_t> branches;
    std::uint32_t unended = 0; ///< line of a start that has no stop; 0 when there is none
};

/// The excluded lines of a source of this text.
ExcludedLines excluded_lines(const std::string& text);

/// The selection of a call.
class Selection
{
public:
    /// Everything that is counted.
    Selection() = default;

    /// Of the options; `directory` is the project's, to which patterns are relative. Throws
    /// `UsageError` for a wrong one.
    Selection(const CommandLine& line, std::string directory);

    /// Leaves what is selected of the coverage. Unended exclusions go to the findings.
    void apply(Coverage& coverage, Findings& findings) const;

    /// False with a message when sources were to be selected and none is in the coverage.
    bool has_selected(const Coverage& coverage) const;

    /// False with a message when the coverage has less than a wanted rate.
    bool is_reached(const Coverage& coverage) const;

private:
    bool is_selected(const std::string& path) const;
    const ExcludedLines& excluded_in(const std::string& path, Findings& findings) const;

    std::string directory_;
    std::vector<std::string> included_; ///< patterns; none: all
    std::vector<std::string> excluded_;
    bool heeds_marks_ = true;
    bool has_throws_ = true;            ///< branches that only an exception takes
    std::optional<double> least_lines_; ///< percent
    std::optional<double> least_branches_;
    mutable std::map<std::string, ExcludedLines> marks_; ///< of the sources that were read
};
