// In the build tree everything lies beside the programs, except the runtime. In an installation the
// build fixes the relative path from each directory to the others, so that it can be moved as a
// whole.
#include "commonfunc/own_files.h"

#include "commonfunc/file_ops.h"

std::string own_file(const std::string& name)
{
    const std::string here = program_directory();
    for (const char* place :
         {"/", "/lib/lltcov/", "/" LLT_DRIVERS_FROM_BIN "/", "/" LLT_LIBRARIES_FROM_DRIVERS "/",
          "/" LLT_LIBRARIES_FROM_BIN "/", "/" LLT_DATA_FROM_BIN "/"}) {
        std::string path = here + place + name;
        if (QMRFileExists(path.c_str()) != 0) {
            return path;
        }
    }
    return "";
}

std::string installed_drivers()
{
    return program_directory() + "/" LLT_DRIVERS_FROM_BIN;
}
