// What a static library brings along: its registration stubs, and members that no stub registers.
#pragma once

#include "lltld/object_scan.h"

#include <set>
#include <string>

/// What one static library says.
struct ArchiveCoverage {
    std::set<std::string> modules; ///< modules that it has stubs of
    std::set<std::string> arrays;  ///< coverage symbols whose arrays its stubs define
    bool has_twins = false;        ///< two of its stubs have the same name
    ScannedObject unregistered;    ///< the other coverage symbols of its members
};

/// Looks into the library, and into the files that a thin one names.
ArchiveCoverage read_archive(const std::string& path);

/// Adds a symbol of this name to an object that was not scanned.
void add_symbol(ScannedObject& object, const std::string& name);
