// Which sources of an object a report may show: those whose text is still what was compiled.
#pragma once

#include "lltcov/project_data.h"

#include <map>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <vector>

/// Whether headers of the system are shown.
enum class SystemHeaders { shown, left_out };

/// The coverage of these objects (indexes into the project's). Lines of a source or header that has
/// changed since the object was compiled, or is gone, are left out and said in the findings.
class CoverageMaker
{
public:
    /// Keeps references to data and findings.
    CoverageMaker(const ProjectData& data, SystemHeaders system_headers, Findings& findings)
        : data_(data), system_headers_(system_headers), findings_(findings)
    {
    }

    /// The coverage of the objects with these indexes.
    Coverage coverage_of(const std::vector<std::size_t>& objects);

private:
    bool is_shown(const InstrumentedObject& object, const std::string& path);
    const std::optional<struct stat>& state_of(const std::string& path);

    const ProjectData& data_;
    SystemHeaders system_headers_;
    Findings& findings_;
    std::map<std::string, std::optional<struct stat>> states_; ///< by path; empty: it is gone
};

/// True for a path where systems keep the headers of compilers and libraries.
bool is_system_header(const std::string& path);
