// What static libraries bring along: their registration stubs, and members that no stub registers.
#pragma once

#include "lltld/object_scan.h"

#include <set>
#include <string>

/// What one static library says.
struct ArchiveCoverage {
    std::set<std::string> modules; ///< modules that it has stubs of
    std::set<std::string> arrays;  ///< coverage symbols whose arrays it defines
    bool has_twins = false;        ///< two of its stubs have the same name
    ScannedObject unregistered;    ///< the coverage symbols of its members that it does not define
};

/// Looks into the library; of a thin one only the index is read.
ArchiveCoverage read_archive(const std::string& path);

/// Adds a symbol of this name to an object that was not scanned.
void add_symbol(ScannedObject& object, const std::string& name);
