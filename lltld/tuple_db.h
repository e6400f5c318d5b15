// The tuple database: which sources were instrumented into which objects under which coverage
// symbols, as the last archive step of the work area left it.
#pragma once

#include "lltld/inst_file_list.h"

#include <vector>

/// One instrumented source, in memory and as the record of the file. NUL-terminated texts.
struct _STInstInfo {
    char szSrcFileName[INST_NAME_SIZE] = {}; ///< path of the source
    char szObjFileName[INST_NAME_SIZE] = {}; ///< path of the object
    char szSymbolName[INST_NAME_SIZE] = {};  ///< coverage symbol, the key
};

/// Appends every record of the file to `out`; an incomplete last record is filled up with zeros.
/// Returns 1, also when there is no file, or 0 when it cannot be read (a message tells when it
/// cannot be opened).
int ReadOldInstInfoFromDb(const char* path, std::vector<_STInstInfo>& out);

/// Writes the file anew from `instFileList`. Returns 1, or 0 when it cannot be opened. On any
/// failure the old file stays and a warning is given.
int WriteNewInstInfoToDb(const char* path);
