// What is seen only when modules and runs are known together is said here: the reports are right
// then, but show less than one would expect.
#include "lltcov/report/whole_project.h"

#include "commonfunc/directory.h"
#include "commonfunc/file_io.h"
#include "commonfunc/file_ops.h"
#include "commonfunc/text.h"
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

/// Whether the text may be in the file, of any size: a thin archive holds but the names of its
/// members.
bool may_hold(const std::string& path, const std::string& text)
{
    bool is_found = false;
    std::string bytes; // the last piece, after what may be the start of the text
    const auto look = [&](const char* piece, std::size_t size) {
        const bool is_first = bytes.empty();
        bytes.append(piece, size);
        is_found = contains(bytes, text) || (is_first && begins_with(bytes, "!<thin>\n"));
        bytes.erase(0, bytes.size() - std::min(bytes.size(), text.size()));
        return !is_found;
    };
    return read_in_pieces(path, look) != Reading::done || is_found;
}

/// Notes what was built again by other means: its runs write no counts, and older ones are shown.
void note_plain_outputs(const ProjectData& data, Findings& findings)
{
    for (const ModuleData& module : data.modules) {
        if (!may_hold(module.output, module.buid)) {
            findings.note("outputs that were built plainly",
                          "'" + module.output +
                              "' was built again without lltwrapper: what it runs now is not "
                              "counted; 'make clean', then 'lltcov run -- make'");
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

void note_left_out(const ProjectData& data, Findings& findings)
{
    for (const ModuleData& module : data.modules) {
        if (is_left_out(data, module)) {
            findings.note(
                "libraries that no link takes",
                "no program or shared library was linked with '" + module.output +
                    "': nothing in it can run; link a test with it, by lltcov run, to count it");
        }
    }
}

bool has_modules(const ProjectData& data, Findings& findings)
{
    if (data.modules.empty()) {
        findings.add("projects", "'" + data.directory +
                                     "' holds no module with coverage data; build it " +
                                     "('make clean' if it is built already, then 'lltcov run -- "
                                     "make', with CC=gcc if it names its compiler by a path), or "
                                     "name another one with --project; 'lltcov doctor' may know "
                                     "why");
    }
    return !data.modules.empty();
}

ProjectData read_project_data(const CommandLine& line, Findings& findings)
{
    const std::string root = project_root(line);
    ProjectData data = read_modules(root, findings, path_maps(line));
    has_modules(data, findings);
    note_old_places(data.maps, dump_root(root), findings);
    add_dumps(data, dump_root(root), findings);
    note_left_out(data, findings);
    note_plain_outputs(data, findings);
    return data;
}
