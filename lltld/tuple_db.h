// The tuple database: which sources were instrumented into which objects under which coverage
// symbols, as the last archive step of the work area left it.
#pragma once

#include <deque>
#include <string>
#include <vector>

/// One instrumented source. The texts are those of a node of the list, or of a record that was
/// read.
struct _STInstInfo {
    const char* szSrcFileName = ""; ///< path of the source
    const char* szObjFileName = ""; ///< path of the object
    const char* szSymbolName = "";  ///< coverage symbol, the key
};

/// The texts of records that were read; they stay where they are.
using InstTexts = std::deque<std::string>;

/// Appends every record of the file to `out`, and its texts to `texts`; an incomplete last record
/// is filled up with zeros. Returns 1, also when there is no file, or 0, with nothing appended to
/// `out`, when it cannot be read (a warning says why).
int ReadOldInstInfoFromDb(const char* path, std::vector<_STInstInfo>& out, InstTexts& texts);

/// Writes the file anew from `instFileList`. Returns 1, or 0 when it cannot be opened. On any
/// failure the old file stays and a warning is given.
int WriteNewInstInfoToDb(const char* path);
