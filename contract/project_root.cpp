// The environment is that of the settings file.
#include "contract/project_root.h"

#include "commonfunc/env.h"
#include "commonfunc/file_ops.h"
#include "commonfunc/file_tree.h"
#include "commonfunc/path_name.h"
#include "commonfunc/text.h"
#include "contract/names.h"
#include "contract/places.h"

#include <sys/stat.h>
#include <vector>

std::string root_of_project(const std::string& path)
{
    std::string root = names_project_file(path) ? split_path(path).directory : path;
    if (!root.empty() && env_int("isOverlappedCompile") == 1) {
        root += "/" + env_text(env_text("PlatformToken").c_str());
    }
    return root;
}

std::string in_place_of_area(const std::string& root, const std::string& module)
{
    for (const std::string& place : {root + "/" + module, places::work_area(root, module)}) {
        struct stat info = {};
        if (::lstat(place.c_str(), &info) == 0 && QMRPathIsDirectory(place.c_str()) == 0) {
            return place;
        }
    }
    return "";
}

bool is_place_of_area(const std::string& path)
{
    return names_in(path) == std::vector<std::string>{AREA_NAME} &&
           QMRFileExists(places::project_file(places::area_in(path)).c_str()) != 0;
}
