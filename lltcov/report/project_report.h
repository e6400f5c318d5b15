// The report that a call asks for: of which project, which sources of it, whether it is good
// enough.
#pragma once

#include "lltcov/common/command_line.h"
#include "lltcov/common/console.h"
#include "lltcov/report/coverage.h"
#include "lltcov/report/project_data.h"
#include "lltcov/report/report_formats.h"
#include "lltcov/report/selection.h"

#include <string>
#include <vector>

/// How a report shows runs that have the name of a test.
enum class Tests { together, each };

/// The flags of a subcommand that makes such a report, added to its own.
std::vector<std::string> with_report_flags(std::vector<std::string> flags);

/// What is hit of the report, in a line.
std::string summary_of(const Report& report);

/// A project's report. What is noticed on the way is printed on standard error.
class ProjectReport
{
public:
    /// Reads the project that the command line names; throws `UsageError` for a wrong call.
    explicit ProjectReport(const CommandLine& line);

    /// Makes the report; false when the project has no module.
    bool make(Tests tests);

    /// Writes the files that gcov reads into a directory instead; false when something was left
    /// out or nothing ran.
    bool write_gcda(const std::string& directory);

    /// The report, when it was made.
    const Report& report() const { return report_; }

    /// False when something was left out, nothing ran (unless the call allows that), or a wanted
    /// rate is missed, which is said on standard error.
    bool is_satisfied() const { return is_satisfied(report_.coverage); }

    /// The same, with the wanted rates for a part of the report.
    bool is_satisfied(const Coverage& part) const;

private:
    bool has_run() const;

    Report report_;
    Selection selection_;
    Findings findings_;
    ProjectData data_;
    bool may_be_empty_;
};
