// Everything that the build and the runs left of a project: modules, objects, counts.
#pragma once

#include "contract/record.h"
#include "lltcov/common/console.h"
#include "lltcov/common/project.h"
#include "lltcov/report/coverage.h"

#include <cstdint>
#include <ctime>
#include <map>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

/// What runs left of an object.
struct RunCounters {
    Counters counters;
    std::uint64_t runs = 0; ///< processes
};

/// One compilation of a source. The symbol stands for source, object and compiled text together.
struct InstrumentedObject {
    std::string symbol;
    std::uint32_t source_size = 0;  ///< when it was compiled; 0 when that is not known
    std::uint32_t source_mtime = 0; ///< likewise
    timespec compiled = {};         ///< when it was compiled
    std::string area;               ///< work area of the (first) module that holds it
    bool is_in_use = false;         ///< the output of a module that holds it is there
    Record record;
    std::string file; ///< clang: a copy of the object, which says what the counters mean
    /// Summed over the runs of all modules, by test name; that of runs without a test is empty.
    std::map<std::string, RunCounters> runs;
};

/// A module as its last archive step or link left it, and its runs.
struct ModuleData {
    Module module;
    std::string buid;                 ///< build id
    std::string output;               ///< absolute path of the archive, library or program
    std::string built;                ///< local time as YYYYMMDDhhmmss
    std::vector<std::size_t> objects; ///< its objects, as indexes into the project's
    std::uint64_t runs = 0;           ///< processes that are counted
    bool is_taken = true;             ///< not so: a static library that no link has taken
};

/// A project. Objects and modules refer to each other by index.
struct ProjectData {
    std::string root;      ///< absolute path of what the tool set has written
    std::string directory; ///< absolute path of the project, in which its sources are
    PathMaps maps;         ///< of what has moved since it was built
    std::vector<ModuleData> modules;
    std::vector<InstrumentedObject> objects; ///< an object that several modules hold is here once
    std::unordered_map<std::string, std::size_t> object_of_symbol;
    std::set<std::string> tests; ///< names of the tests whose runs are counted
};

/// Reads the modules' tables and records. What is missing or damaged goes to the findings.
ProjectData read_modules(const std::string& root, Findings& findings, const PathMaps& maps = {});

/// Adds the counts of every dump file in the directory that belongs to a module and its build.
/// Those of other projects are passed over; what else is left out goes to the findings.
void add_dumps(ProjectData& data, const std::string& directory, Findings& findings);

/// All runs of the object together; zeros when there are none.
RunCounters all_runs(const InstrumentedObject& object);

/// The indexes of all objects.
std::vector<std::size_t> all_objects(const ProjectData& data);
