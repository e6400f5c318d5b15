// Without a work area every path would begin at the root directory, so nothing is removed then.
#include "lltld/work_area.h"

#include "commonfunc/Caddis_func.h"
#include "commonfunc/file_ops.h"
#include "commonfunc/file_replace.h"
#include "commonfunc/file_tree.h"
#include "commonfunc/message.h"
#include "commonfunc/path_name.h"
#include "commonfunc/text.h"
#include "contract/places.h"
#include "contract/project_file.h"
#include "lltld/cov_paths.h"
#include "lltld/prj_settings.h"
#include "lltld/work_area_lock.h"

#include <cerrno>
#include <cstddef>
#include <vector>

namespace
{

/// Bytes of the path of db that are used.
constexpr std::size_t DB_DIR_LENGTH = 319;

/// Reports a database that another user's step left: it would stay beside the new ones.
void warn_if_left(const std::string& db)
{
    for (const std::string& name : names_in(db)) {
        if (begins_with(name, "db")) {
            errno = EACCES;
            warn_not_written(db + "/" + name);
            return;
        }
    }
}

void clear_numbered_databases()
{
    const std::string db = db_dir();
    if (!path_fits(db, DB_DIR_LENGTH) || QMRPathIsDirectory(db.c_str()) == 0) {
        return;
    }
    flush_output(); // the lines so far, before what follows warns of
    if (!remove_entries(db, "db")) {
        warn_if_left(db);
    }
}

/// Empties a directory of the work area if it exists; false when that was impossible.
bool clear_directory(const char* name)
{
    const std::string path = std::string(g_lxprj->szCovDictPath) + "/" + name;
    if (!path_fits(path)) {
        return false;
    }
    if (QMRPathIsDirectory(path.c_str()) == 0) {
        return true;
    }
    clear_directory_by_itself(path);
    return true;
}

} // namespace

void name_work_area(const std::string& root, const std::string& module)
{
    LinuxPrjItem& prj = *g_lxprj;
    copy_bounded(prj.modName, module);
    if (!copy_bounded(prj.szCovDictPath, places::work_area(root, module))) {
        prj.isCovDictPathCut = true;
    }
}

bool enter_work_area(const std::string& root, const std::string& module)
{
    LinuxPrjItem& prj = *g_lxprj;
    name_work_area(root, module);
    const bool created = CodeMeasure_CreateDir() != 0;
    lock_work_area(prj.szCovDictPath);
    const std::string temp = absolute_path(places::temporary_directory_near(prj.szCovDictPath));
    if (!copy_bounded(prj.szLLTTEMP, temp)) {
        prj.isCovDictPathCut = true;
    }
    return created;
}

std::string output_of_work_area()
{
    return project_value(g_lxprj->szCovDictPath, project_key::OUTPUT);
}

bool clear_work_area()
{
    if (g_lxprj->szCovDictPath[0] == '\0') {
        warn(
            "nothing is cleared: the project path is not known; set 'qmr_current_prj_path' and name an archive");
        return true;
    }
    if (absolute_path(g_lxprj->szCovDictPath) == places::area_in(g_lxprj->szLLTTEMP)) {
        warn(
            "a library named '%s' would take the project's temporary area, which holds what the compiles left; give it another name",
            g_lxprj->modName);
        return false;
    }
    clear_numbered_databases();
    return clear_directory("obj/before") && clear_directory("ini");
}
