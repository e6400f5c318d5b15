// Which sources of an object a report may show: those whose text is still what was compiled.
#pragma once

#include "lltcov/common/console.h"
#include "lltcov/report/coverage.h"
#include "lltcov/report/object_reading.h"
#include "lltcov/report/project_data.h"
#include "lltcov/report/selection.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <sys/stat.h> // IWYU pragma: keep
#include <utility>
#include <vector>

/// Makes the coverage of a project's objects. Lines of a source or header that has changed since an
/// object was compiled, or is gone, are left out of what that object gives, and said in the
/// findings; headers of the system are left out, and what is not selected.
class CoverageMaker
{
public:
    /// Keeps references to data and findings.
    CoverageMaker(const ProjectData& data, Counting counting, Findings& findings,
                  Selection selection = {})
        : data_(data), counting_(counting), findings_(findings), selection_(std::move(selection)),
          totals_(data.objects.size())
    {
    }

    /// The coverage of the objects with these indexes by all runs. Each object is read once,
    /// however often it is asked for.
    Coverage coverage_of(const std::vector<std::size_t>& objects);

    /// The coverage by the runs of a test, of those of the objects that it ran; with an empty name,
    /// by the runs without a test, of all the objects.
    Coverage coverage_of_test(const std::string& test, const std::vector<std::size_t>& objects);

    /// The objects that hold the line.
    std::vector<std::size_t> objects_with(const std::string& path, std::uint32_t line);

private:
    /// The coverage that one object adds to a sum.
    struct Share {
        std::size_t object;
        const Coverage* coverage;
        Counters counters; ///< of clang alone
    };

    std::vector<Share> totals_of(const std::vector<std::size_t>& objects);
    Coverage sum_of(const std::vector<Share>& shares);
    ObjectReading reading_of(std::size_t object, Counters counters) const;
    bool is_read_together(const Share& share);
    void read_totals(const std::vector<std::size_t>& objects);
    void read(std::vector<ObjectReading>& readings);
    void add(Coverage& sum, std::size_t object, const Coverage& coverage);
    bool is_shown(const InstrumentedObject& object, const std::string& path);
    const std::optional<struct stat>& state_of(const std::string& path);

    const ProjectData& data_;
    Counting counting_;
    Findings& findings_;
    Selection selection_;
    std::vector<std::optional<Coverage>> totals_;              ///< by object
    std::map<std::string, std::optional<struct stat>> states_; ///< by path; empty: it is gone
};

/// True for a path where systems keep the headers of compilers and libraries.
bool is_system_header(const std::string& path);

/// What reports show, of "LLTCOV_COUNT": "lines", "branches" (also when it is not set or empty) or
/// "conditions". Throws `UsageError` for anything else.
Counting wanted_counting();
