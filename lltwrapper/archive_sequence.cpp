// One step after the other on the module's work area D. A failed clearing, an unresolved symbol or
// a failed tidying ends the sequence; a missing stub object does not: the archiver reports it.
#include "lltwrapper/archive_sequence.h"

#include "commonfunc/file_tree.h"
#include "lltld/covlinktool.h"
#include "lltld/linuxfunc.h"
#include "lltwrapper/forward_cmd.h"
#include "lltwrapper/wrapper_state.h"

#include <cstdio>
#include <sys/stat.h>

namespace
{

/// Bytes of the paths that are used.
constexpr std::size_t DB_DIR_LENGTH = 319;
constexpr std::size_t PATH_LENGTH = 511;

bool fits(const std::string& path, std::size_t length)
{
    if (path.size() > length) {
        warn("'%s' is longer than %zu bytes and not used; use a shorter project path", path.c_str(),
             length);
    }
    return path.size() <= length;
}

/// Without a work area every path would begin at the root directory.
bool has_work_area()
{
    if (g_lxprj->szCovDictPath[0] == '\0') {
        warn("nothing is cleared: the project path is not known; set 'qmr_current_prj_path' and "
             "name an archive");
    }
    return g_lxprj->szCovDictPath[0] != '\0';
}

void clear_numbered_databases()
{
    const std::string db = db_dir();
    if (!fits(db, DB_DIR_LENGTH) || QMRPathIsDirectory(db.c_str()) == 0) {
        return;
    }
    if (run_helper("rm -rf " + shell_word(db) + "/db*") != 0) {
        // More names than one command line holds keep `rm` from starting.
        remove_entries(db, "db");
    }
}

/// Empties a directory of the work area if it exists; false when that was impossible.
bool clear_directory(const char* name)
{
    const std::string path = std::string(g_lxprj->szCovDictPath) + "/" + name;
    if (!fits(path, PATH_LENGTH)) {
        return false;
    }
    if (QMRPathIsDirectory(path.c_str()) == 0) {
        return true;
    }
    if (DeleteAllFilesInDirectory(path.c_str()) == 0) {
        return false;
    }
    remove_entries(path, ""); // in case `rm` could not start
    return true;
}

/// Old records, new records, superseded ones removed, and the new `tuple.db`.
bool update_tuple_database()
{
    std::vector<_STInstInfo> old_records;
    std::vector<_STInstInfo> new_records;
    const std::string path = tuple_db_path();
    if (!fits(path, PATH_LENGTH)) {
        return false;
    }
    ReadOldInstInfoFromDb(path.c_str(), old_records);
    if (GetNewInstInfo(instFileList, new_records, old_records) == 0) {
        return false;
    }
    UpdateDB_DelExpiredFile(old_records, new_records);
    WriteNewInstInfoToDb(path.c_str());
    return true;
}

bool is_older(const struct stat& a, const struct stat& b)
{
    return a.st_mtim.tv_sec < b.st_mtim.tv_sec ||
           (a.st_mtim.tv_sec == b.st_mtim.tv_sec && a.st_mtim.tv_nsec < b.st_mtim.tv_nsec);
}

void warn_if_stub_is_stale(bool compiled)
{
    const std::string path = stub_object_path();
    struct stat object = {};
    struct stat source = {};
    if (::stat(path.c_str(), &object) != 0) {
        warn("the stub object '%s' was not made: the archiver will miss it; see the messages "
             "above and compile '%s' by hand to find out",
             path.c_str(), stub_source_path().c_str());
    } else if (!compiled ||
               (::stat(stub_source_path().c_str(), &source) == 0 && is_older(object, source))) {
        warn("the stub object '%s' is older than its source: the library registers an earlier "
             "build's counters; compile '%s' by hand to find out",
             path.c_str(), stub_source_path().c_str());
    }
}

} // namespace

bool bring_archive_up_to_date()
{
    g_iStaticLib = 1;
    if (g_lxprj->isCovDictPathCut) {
        warn("the project path is too long for a work area of 511 bytes; use a shorter one");
        return false;
    }
    if (has_work_area()) {
        clear_numbered_databases();
        if (!clear_directory("obj/before") || !clear_directory("ini")) {
            return false;
        }
    }
    if (!update_tuple_database()) {
        return false;
    }
    if (TidyCoverageDB() == 0) {
        print_fatal("TidyCoverageDB error\n");
        return false;
    }
    warn_if_stub_is_stale(Caddis_Coverage_CreateCovInitCodeFile() != 0);
    GenerateCMD2AR();
    return true;
}
