// What a static library brings along: its stubs, and members that no stub registers.
#pragma once

#include "lltld/archive_file.h"
#include "lltld/object_scan.h"

#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>

/// The build that a stub is of; empty texts when the stub does not show them.
struct StubBuild {
    std::string area; ///< work area
    std::string buid; ///< build id
};

/// What one static library says.
struct ArchiveCoverage {
    std::map<std::string, StubBuild> modules; ///< modules that it has stubs of, by name
    std::set<std::string> arrays;             ///< coverage symbols whose arrays its stubs define
    bool has_twins = false;                   ///< two of its stubs have the same name
    ScannedObject unregistered;               ///< the other coverage symbols of its members
};

/// Looks into the library, and into the files that a thin one names.
ArchiveCoverage read_archive(const std::string& path);

/// Calls the function with the bytes of each member of the archive at `path`; those of a thin one
/// are read from the files that it names.
void for_each_member(const std::string& path, const ArchiveFile& archive,
                     const std::function<void(std::string_view)>& look_at);

/// Adds a symbol of this name to an object that was not scanned.
void add_symbol(ScannedObject& object, const std::string& name);
