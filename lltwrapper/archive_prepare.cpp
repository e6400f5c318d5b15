// Settings -> work area -> members. No result of a step is looked at: what could be prepared is
// prepared, and the archive sequence runs on whatever there is.
#include "lltwrapper/archive_prepare.h"

#include "commonfunc/Caddis_func.h"
#include "commonfunc/file_io.h"
#include "commonfunc/file_ops.h"
#include "commonfunc/message.h"
#include "commonfunc/path_name.h"
#include "commonfunc/response_file.h"
#include "commonfunc/text.h"
#include "lltld/archive_file.h"
#include "lltld/cov_paths.h"
#include "lltld/prj_settings.h"
#include "lltld/work_area.h"
#include "lltwrapper/wrapper_state.h"

#include <algorithm>
#include <cstdio>
#include <string_view>
#include <utility>

namespace
{

/// Bytes of an object's absolute path that are used.
constexpr std::size_t OBJECT_PATH_LENGTH = 259;

/// Reads the file that an argument names; true when it is a member with coverage data.
bool inspect(const std::string& argument, ScannedObject& object)
{
    const std::string path = absolute_path(argument);
    if (path.size() > OBJECT_PATH_LENGTH && QMRFileExists(path.c_str()) != 0) {
        warn(
            "'%s' is not inspected: its path is longer than %zu bytes; if it is instrumented, its counters will be undefined; use a shorter project path",
            path.c_str(), OBJECT_PATH_LENGTH);
        return false;
    }
    return scan_object(path, object) && !object.has_test_loader && !object.symbols.empty();
}

/// Kept: in this case of letters alone, while the scan of classify takes them in any case.
bool is_suffix_option(const std::string& argument)
{
    const char* const options[] = {"-objsuffix", "-binsuffix", "-arsuffix", "-artool"};
    return std::find(std::begin(options), std::end(options), argument) != std::end(options);
}

/// Names the module by the archive's stem; false after a message when there is none.
bool name_module()
{
    if (strLinkName.empty()) {
        // Kept: the archive sequence then runs with an empty module name.
        say("lltwrapper error, null projectname.\n");
        std::fflush(stdout);
        return false;
    }
    strLinkName.resize(std::min(strLinkName.size(), MODULE_NAME_LENGTH));
    std::replace(strLinkName.begin(), strLinkName.end(), '-', '_');
    return true;
}

/// Two archives of the same stem take turns in a work area, and each build throws away the other's
/// coverage. One that is gone, or was elsewhere before the project moved, does not.
void warn_if_work_area_is_shared()
{
    const LinuxPrjItem& prj = *g_lxprj;
    // Keys that were written later have squeezed percent signs in the value.
    const std::string known = output_of_work_area();
    if (QMRFileExists(known.c_str()) != 0 && known != prj.szObjFile &&
        known != squeeze_percent_pairs(prj.szObjFile)) {
        warn(
            "'%s' and '%s' share the work area '%s': each overwrites the other's coverage; give the libraries different names",
            known.c_str(), prj.szObjFile, prj.szCovDictPath);
    }
}

bool begins_as_archive(const std::string& path)
{
    bool is_one = false;
    const auto look = [&](const char* piece, std::size_t size) {
        is_one = is_archive({piece, size});
        return false;
    };
    read_in_pieces(path, look, ARCHIVE_MAGIC.size());
    return is_one;
}

std::vector<ScannedObject> members_with_coverage(const std::vector<std::string>& arguments)
{
    std::vector<ScannedObject> members;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        ScannedObject object;
        if (is_suffix_option(arguments[i])) {
            ++i;
        } else if (inspect(arguments[i], object)) {
            members.push_back(std::move(object));
        }
    }
    return members;
}

} // namespace

void warn_of_stale_member()
{
    const auto is_gone = [](const CoverageSymbol& symbol) {
        return QMRFileExists(temp_ini_path(symbol.name.c_str()).c_str()) == 0;
    };
    // Compiling an object again would not help where an archive is to blame.
    std::stable_partition(vtor_obj.begin(), vtor_obj.end(), begins_as_archive);
    for (const std::string& path : vtor_obj) {
        ScannedObject object;
        scan_object(path, object);
        if (std::any_of(object.symbols.begin(), object.symbols.end(), is_gone)) {
            warn(
                "'%s' holds counters of an earlier compile, whose record is gone: delete it, and make it again",
                path.c_str());
            return;
        }
    }
}

ArchivePlan plan_archive(const std::vector<std::string>& arguments, EnterWorkArea enter)
{
    Caddis_LD_Initial();
    if (!name_module()) {
        return {};
    }
    enter(g_lxprj->szCovDictPath, strLinkName);
    warn_if_work_area_is_shared();
    const auto words = with_response_files(arguments);
    return {true, words, members_with_coverage(words)};
}
