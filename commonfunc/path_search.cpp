// The shims name tools by absolute paths; the shell also takes what a relative PATH leads to.
#include "commonfunc/path_search.h"

#include "commonfunc/env.h"
#include "commonfunc/text.h"

#include <algorithm>
#include <sys/stat.h>
#include <unistd.h>

std::vector<std::string> path_directories()
{
    std::vector<std::string> all;
    strsplit_v(env_text("PATH").c_str(), ':', all);
    std::vector<std::string> absolute;
    for (const std::string& directory : all) {
        if (!directory.empty() && directory[0] == '/') {
            absolute.push_back(directory);
        }
    }
    return absolute;
}

bool is_program(const std::string& path)
{
    struct stat info = {};
    return ::stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode) &&
           ::access(path.c_str(), X_OK) == 0;
}

std::string find_program(const std::vector<std::string>& directories, const std::string& name)
{
    for (const std::string& directory : directories) {
        std::string path = directory + "/" + name;
        if (is_program(path)) {
            return path;
        }
    }
    return "";
}

std::string program_on_path(const std::string& name)
{
    if (name.find('/') != std::string::npos) {
        return is_program(name) ? name : "";
    }
    std::vector<std::string> directories;
    strsplit_v(env_text("PATH").c_str(), ':', directories);
    std::replace(directories.begin(), directories.end(), std::string(), std::string("."));
    return find_program(directories, name);
}
