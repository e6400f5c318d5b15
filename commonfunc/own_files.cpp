// The build tree has everything beside the programs, but for the runtime. In an installation the
// way from directory to directory is fixed by the build, so that it can be moved as a whole.
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
