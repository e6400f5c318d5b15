// The copies go under the number that was given last. Kept: a symbol without a record of its own
// therefore copies to db-1 when it is the first, and into the previous entry's directory later.
#include "lltld/db_tidy.h"

#include "commonfunc/Caddis_func.h"
#include "commonfunc/file_io.h"
#include "commonfunc/file_ops.h"
#include "commonfunc/file_tree.h"
#include "commonfunc/message.h"
#include "lltld/cov_paths.h"
#include "lltld/inst_file_list.h"
#include "lltld/prj_settings.h"
#include "lltld/source_tab.h"

#include <cstdio>
#include <string>

namespace
{

constexpr unsigned int CODE_TIDYING_ERROR = 2311;

/// The symbols whose saved objects are not copied yet: from one node of `instFileList` to another.
const _InstFile* uncopied = nullptr;
const _InstFile* uncopied_end = nullptr;

/// Copies a file or directory of a record; false when its source is missing.
bool copy_artefact(const std::string& source, const std::string& destination)
{
    if (QMRFileExists(source.c_str()) == 0) {
        return false;
    }
    copy_tree(source, destination);
    return true;
}

/// True when the symbol's artefacts are there; the saved object, the largest, is copied later.
bool copy_artefacts(const char* symbol, int number)
{
    return copy_artefact(temp_db_dir(symbol), numbered_db_dir(number)) &&
           copy_artefact(temp_ini_path(symbol), ini_path(symbol)) &&
           QMRFileExists(temp_saved_object_path(symbol).c_str()) != 0;
}

bool tidy_symbols(std::FILE* merged, _SOURCEFILE_TAB& work)
{
    int counter = 0;
    for (const _InstFile* node = instFileList.pHead; node != nullptr; node = node->pNext) {
        const char* const symbol = node->szInstFileName.c_str();
        std::printf("[lltld:TidyCoverageDB]symbol=%s\n", symbol);
        if (SrcFileTabInfoWriteToCovTab(temp_tab_path(symbol).c_str(), merged, &work, &counter) <
            1) {
            TUSKLog(LOG_COMPONENT, LOG_MODULE, LOG_ERROR, CODE_TIDYING_ERROR,
                    "this error arises when TidyCoverageDB!\n");
            return false;
        }
        if (g_iSupportSameName == 1) {
            if (!copy_artefacts(symbol, counter - 1)) {
                return false;
            }
            uncopied_end = node->pNext;
        }
    }
    return true;
}

} // namespace

int TidyCoverageDB()
{
    const std::string path = merged_tab_path();
    std::FILE* merged = open_file(path, "w+be").release();
    if (merged == nullptr) {
        std::printf("Open file '%s' failed!\n", path.c_str());
        warn_not_written(path);
        return 0;
    }
    uncopied = uncopied_end = instFileList.pHead;
    _SOURCEFILE_TAB work;
    bool done = tidy_symbols(merged, work);
    if (std::fclose(merged) != 0) {
        std::printf("Error:Write insted info to '%s/db/.tab' failed!\n", g_lxprj->szCovDictPath);
        warn_not_written(path);
        done = false;
    }
    release_table(work);
    if (!done) {
        std::remove(path.c_str());
        copy_saved_objects();
    }
    return done ? 1 : 0;
}

void copy_saved_objects()
{
    for (; uncopied != uncopied_end; uncopied = uncopied->pNext) {
        const char* const symbol = uncopied->szInstFileName.c_str();
        copy_tree(temp_saved_object_path(symbol), saved_object_path(symbol));
    }
}
