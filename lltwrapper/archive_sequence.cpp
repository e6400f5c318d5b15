// One step after the other on the module's work area D. A failed clearing, an unresolved symbol or
// a failed tidying ends the sequence; a missing stub object does not: the archiver reports it.
#include "lltwrapper/archive_sequence.h"

#include "commonfunc/Caddis_func.h"
#include "commonfunc/message.h"
#include "lltld/cov_paths.h"
#include "lltld/db_tidy.h"
#include "lltld/inst_resolve.h"
#include "lltld/program_objects.h"
#include "lltld/stub_source.h"
#include "lltld/work_area.h"

#include <string>
#include <sys/stat.h>

namespace
{

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
        warn(
            "the stub object '%s' was not made: the archiver will miss it; see the messages above and compile '%s' by hand to find out",
            path.c_str(), stub_source_path().c_str());
    } else if (!compiled ||
               (::stat(stub_source_path().c_str(), &source) == 0 && is_older(object, source))) {
        warn(
            "the stub object '%s' is older than its source: the library registers an earlier build's counters; compile '%s' by hand to find out",
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
    if (!clear_work_area() || !update_tuple_database()) {
        return false;
    }
    if (TidyCoverageDB() == 0) {
        print_fatal("TidyCoverageDB error\n");
        return false;
    }
    const bool compiled = Caddis_Coverage_CreateCovInitCodeFile() != 0;
    copy_saved_objects(); // if no compile was reached
    warn_if_stub_is_stale(compiled);
    return true;
}
