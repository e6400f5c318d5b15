#include "toolset/lltcc/tools_directory.h"

#include "commonfunc/file_ops.h"

std::string tools_directory()
{
    for (const char* place : {"/lltcc.d", "/../lib/lltcov/lltcc.d"}) {
        std::string directory = program_directory() + place;
        if (QMRFileExists((directory + "/as").c_str()) != 0) {
            return directory;
        }
    }
    return "";
}
