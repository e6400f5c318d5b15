// The build tree has the programs where the installation has bin, and some files beside them.
#include "toolset/common/own_files.h"

#include "commonfunc/file_ops.h"

std::string own_file(const std::string& name)
{
    for (const char* place : {"/", "/../lib/lltcov/", "/lib/lltcov/"}) {
        std::string path = program_directory() + place + name;
        if (QMRFileExists(path.c_str()) != 0) {
            return path;
        }
    }
    return "";
}
