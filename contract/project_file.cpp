// Read and written by the rules of all INI files of a project.
#include "contract/project_file.h"

#include "commonfunc/ini_profile.h"
#include "contract/places.h"

#include <climits>

namespace
{

constexpr char SECTION[] = "project";

} // namespace

std::string project_value(const std::string& area, const char* key)
{
    char value[PATH_MAX] = {};
    read_profile_string(SECTION, key, value, sizeof value, nullptr,
                        places::project_file(area).c_str());
    return value;
}

int set_project_value(const std::string& area, const char* key, const char* value)
{
    return write_profile_string(SECTION, key, value, places::project_file(area).c_str());
}
