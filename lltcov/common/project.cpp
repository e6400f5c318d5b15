// Where a project and its parts are. A module is known by the project file of its work area, a dump
// by its name.
#include "lltcov/common/project.h"

#include "commonfunc/env.h"
#include "commonfunc/file_ops.h"
#include "commonfunc/file_tree.h"
#include "commonfunc/message.h"
#include "commonfunc/path_name.h"
#include "commonfunc/text.h"
#include "contract/names.h"
#include "contract/places.h"
#include "contract/project_root.h"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <fnmatch.h>
#include <memory>
#include <system_error>
#include <utility>

namespace
{

/// The current directory, or the nearest above it that has a directory of ours.
std::string directory_around()
{
    std::string here = absolute_path(".");
    for (std::string directory = here; !directory.empty(); directory.erase(directory.rfind('/'))) {
        if (own_directory(directory) != directory) {
            return directory;
        }
    }
    return here;
}

/// Says once that the settings in the environment are those of another project than this
/// directory's.
void warn_of_settings(const std::string& root)
{
    static bool is_said = false;
    const std::string project = project_directory(root);
    const std::string around = directory_around();
    if (own_directory(around) != around && around != project && !is_inside(around, project) &&
        !std::exchange(is_said, true)) {
        warn(
            "the project is '%s', of qmr_current_prj_path, not '%s': 'unset qmr_current_prj_path', or --project, chooses that one",
            project.c_str(), around.c_str());
    }
}

/// The root of the data of a project that is named by its directory. Throws for a symbolic link:
/// dumps name their work area by its real path, which would not be below the link.
std::string data_of(const std::string& directory)
{
    std::string own = own_directory(directory);
    std::error_code error;
    if (own != directory && std::filesystem::is_symlink(own, error)) {
        throw UsageError("'" + own + "' is a symbolic link; put a directory in its place");
    }
    return own;
}

} // namespace

std::string project_root(const CommandLine& line)
{
    const bool is_named = line.has("--project");
    std::string root = is_named ? line.value("--project") : env_text("qmr_current_prj_path");
    if (is_named || root.empty()) {
        root = names_project_file(root) ? split_path(root).directory : root;
        root = data_of(root.empty() ? directory_around() : root);
    } else {
        root = root_of_project(root);
    }
    std::string absolute = absolute_path(root);
    if (QMRPathIsDirectory(absolute.c_str()) == 0) {
        throw UsageError("the project's directory '" + root + "' does not exist");
    }
    if (!is_named && env_is_filled("qmr_current_prj_path")) {
        warn_of_settings(absolute);
    }
    return absolute;
}

PathMaps path_maps(const CommandLine& line)
{
    PathMaps maps;
    for (const std::string& text : line.values("--map")) {
        const std::size_t equals = text.find('=');
        std::string there = text.substr(0, equals);
        there.erase(there.find_last_not_of('/') + 1);
        const std::string here = equals == text.npos ? "" : absolute_path(text.substr(equals + 1));
        if (there[0] != '/' || here.empty()) {
            throw UsageError("'--map " + text +
                             "': write it as THERE=HERE, an absolute path and one that exists");
        }
        maps.push_back({there, here});
    }
    return maps;
}

std::string mapped_path(const PathMaps& maps, const std::string& path)
{
    const auto map = std::find_if(maps.begin(), maps.end(),
                                  [&](const auto& each) { return is_inside(path, each.there); });
    return map == maps.end() ? path : map->here + path.substr(map->there.size());
}

std::string own_directory(const std::string& directory)
{
    std::string own = directory + "/" OWN_DIRECTORY;
    return QMRPathIsDirectory(own.c_str()) != 0 ? own : directory;
}

std::string kept_place(const std::string& root, const std::string& name)
{
    return (is_own_directory(root) ? root : places::temporary_directory(root)) + "/" + name;
}

bool is_own_directory(const std::string& root)
{
    return base_name(root) == OWN_DIRECTORY;
}

std::string project_directory(const std::string& root)
{
    const std::size_t at = (root + "/").rfind("/" OWN_DIRECTORY "/");
    return at == std::string::npos ? root : root.substr(0, std::max<std::size_t>(at, 1));
}

std::vector<Module> modules_of(const std::string& root)
{
    std::vector<Module> modules;
    for (const std::string& name : names_in(root)) {
        const std::string area = places::work_area(root, name);
        if (name != TEMPORARY_NAME && QMRFileExists(places::project_file(area).c_str()) != 0) {
            modules.push_back({name, area});
        }
    }
    return modules;
}

std::string dump_root(const std::string& root)
{
    if (env_is_filled("LLTCOV_ROOT")) {
        return env_text("LLTCOV_ROOT");
    }
    // What the settings of another project have made is not the place of this one.
    const std::string project = env_text("qmr_current_prj_path");
    const std::string settings =
        names_project_file(project) ? split_path(project).directory : project;
    const std::string chosen = env_text("lltcovRootpath");
    const bool is_of_another =
        chosen == settings + "/" DUMP_DIRECTORY && root != settings && !is_inside(root, settings);
    return chosen.empty() || is_of_another ? root + "/" DUMP_DIRECTORY : chosen;
}

bool is_dump(const std::string& name)
{
    const std::size_t dot = name.rfind('.');
    return name[0] != '.' && dot != name.npos && name.substr(dot) == DUMP_SUFFIX;
}

bool is_spare_dump(const std::string& name)
{
    return ::fnmatch(".?*" DUMP_SUFFIX SPARE_SUFFIX, name.c_str(), 0) == 0;
}

bool is_inside(const std::string& path, const std::string& directory)
{
    return path.compare(0, directory.size() + 1, directory + "/") == 0;
}

std::string shown_path(const std::string& path, const std::string& directory)
{
    return is_inside(path, directory) ? path.substr(directory.size() + 1) : path;
}
