// What is seen only when modules and runs are known together is said here: the reports are right
// then, but show less than one would expect.
#include "lltcov/report/whole_project.h"

#include "commonfunc/directory.h"
#include "commonfunc/file_ops.h"
#include "lltcov/common/project.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace
{

/// Notes where programs write that were linked before the project moved, when they have. `dumps` is
/// the directory that is read.
void note_old_places(const PathMaps& maps, const std::string& dumps, Findings& findings)
{
    for (const auto& [there, here] : maps) {
        const std::string old = is_inside(dumps, here) ? there + dumps.substr(here.size()) : "";
        const std::vector<std::string> names = names_in(old);
        if (std::any_of(names.begin(), names.end(), is_dump)) {
            findings.note("old places",
                          "programs that were linked before the project moved write to '" + old +
                              "', which is not read: set LLTCOV_ROOT=" + dumps +
                              " for tests; 'lltcov merge --map " + there + "=" + here + " " + old +
                              "' takes what is there");
        }
    }
}

/// Notes each library of which nothing can have run.
void note_left_out(const ProjectData& data, Findings& findings)
{
    for (const ModuleData& module : data.modules) {
        if (is_left_out(data, module)) {
            findings.note("libraries that no link takes",
                          "no program or shared library was linked with '" + module.output +
                              "': nothing in it can run; link a test with it to count it");
        }
    }
}

} // namespace

bool is_left_out(const ProjectData& data, const ModuleData& module)
{
    return !module.is_taken && QMRFileExists(module.output.c_str()) != 0 &&
           std::all_of(module.objects.begin(), module.objects.end(),
                       [&](std::size_t object) { return data.objects[object].runs.empty(); });
}

ProjectData read_project_data(const CommandLine& line, Findings& findings)
{
    const std::string root = project_root(line);
    ProjectData data = read_modules(root, findings, path_maps(line));
    if (data.modules.empty()) {
        findings.add("projects", "'" + data.directory +
                                     "' holds no module with coverage data; build it " +
                                     "through lltwrapper, or name another one with --project");
    }
    note_old_places(data.maps, dump_root(root), findings);
    add_dumps(data, dump_root(root), findings);
    note_left_out(data, findings);
    return data;
}
