// What the inputs of a link bring along.
#pragma once

#include "contract/linked_libraries.h"
#include "lltld/object_scan.h"
#include "toolset/linkdriver/link_command.h"

#include <cstddef>
#include <set>
#include <string>
#include <vector>

/// What has to do with coverage among the inputs.
struct LinkCoverage {
    std::vector<ScannedObject> objects;   ///< what the link's own stub has to register
    std::set<std::string> modules;        ///< stubs in static libraries
    std::vector<LinkedLibrary> libraries; ///< that register themselves: what is known
    bool has_twins =
        false; ///< two libraries define the same array or stub, or a program displaces a work area
    std::size_t first = static_cast<std::size_t>(-1); ///< word of the first input concerned

    /// No input has anything to do with coverage.
    bool is_empty() const { return first == static_cast<std::size_t>(-1); }
};

/// Looks into every object and static library of the link.
LinkCoverage find_coverage(const LinkCommand& link);
