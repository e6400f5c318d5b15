// The records are completed in place: the stub's registration reads the same ones afterwards.
// Kept: stems are cut to `MAX_SYMBOL` bytes, so a longer symbol's own table is not found.
#include "lltld/db_number.h"

#include "commonfunc/Caddis_func.h"
#include "commonfunc/build_id.h"
#include "commonfunc/file_io.h"
#include "commonfunc/file_ops.h"
#include "commonfunc/text.h"
#include "contract/names.h"
#include "contract/project_file.h"
#include "lltld/counter_mode.h"
#include "lltld/cov_paths.h"
#include "lltld/prj_settings.h"

namespace
{

/// The array line of a record whose symbol has a directory; nothing otherwise.
void write_array(const CounterMode& mode, const std::string& stem, int instnum, std::FILE* stub)
{
    // Where same names are told apart it is the directory whose table has just been read.
    if (g_iSupportSameName != 0 || QMRFileExists(symbol_db_dir(stem.c_str()).c_str()) != 0) {
        const bool custom_type = g_lxprj->szCov_type[0] != '\0';
        const std::int64_t length = array_length(mode, instnum);
        std::fputs(array_line(mode, stem.c_str(), length, custom_type).c_str(), stub);
    }
}

/// The keys of the project file, in the order in which they are written.
int write_project_keys(const CounterMode& mode, int start)
{
    const char* const area = g_lxprj->szCovDictPath;
    if (CodeMeasure_Tool_WriteScanCfgInt(project_key::START, start) == 0) {
        std::printf("Write Stub number to '%s/.prj' failed!\n", area);
        return 0;
    }
    if (CodeMeasure_Tool_WriteScanCfgInt(project_key::COUNTER_MODE, mode.recorded_mode) == 0) {
        std::printf("Write coverage_counter_mode to '%s/.prj' failed!\n", area);
        return 0;
    }
    char now[512];
    QMRTimeFormatStr(now, sizeof now, "%Y%m%d%H%M%S");
    CodeMeasure_Tool_WriteScanCfgString(project_key::BUILT, now);
    // Kept: always 1.
    if (CodeMeasure_Tool_WriteScanCfgInt(project_key::SAME_NAME, 1) == 0) {
        std::printf("Write \"SupportSameName\" to '%s/.prj' failed!\n", area);
        return 0;
    }
    CodeMeasure_Tool_WriteScanCfgString(project_key::OUTPUT, g_lxprj->szObjFile);
    CodeMeasure_Tool_WriteScanCfgString(project_key::BUILD_ID, TUSK_Build_GetBUID());
    return 1;
}

/// Appends the completed record; the local table holds the symbol's own numbers.
int complete_record(const _SOURCEFILE_OBJECT& own, std::FILE* tab, _SOURCEFILE_OBJECT& record,
                    std::uint64_t& start)
{
    record.instnum = own.instnum;
    record.inststartpoint = static_cast<std::int32_t>(start);
    start += start_advance(counter_mode(g_lxprj->stubmode), own.instnum);
    if (!write_record(record, tab)) {
        std::puts("Write tab file failed!");
        return 0;
    }
    return 1;
}

} // namespace

std::string stem_of(const std::string& name)
{
    return name.substr(0, name.rfind('.'));
}

int LD_UpDateCovDbTab(_SOURCEFILE_TAB table, std::FILE* stub, std::FILE* tab)
{
    const CounterMode mode = counter_mode(g_lxprj->stubmode);
    std::uint64_t start = 0;
    for (int i = 0; i < table.elementcount; ++i) {
        _SOURCEFILE_OBJECT& record = table.objlist[i];
        char name[MAX_SYMBOL + 1];
        QMRStrcpy(name, record.szName, sizeof name);
        const std::string stem = stem_of(name);
        if (RenameFileDBDir(stem.c_str(), tab, &record, &start) < 1) {
            return 0;
        }
        if (stub != nullptr) {
            write_array(mode, stem, record.instnum, stub);
        }
    }
    return write_project_keys(mode, static_cast<int>(start));
}

bool write_merged_table(const _SOURCEFILE_TAB& table, std::FILE* stub)
{
    bool done = false;
    const auto write = [&](std::FILE* tab) {
        done = LD_UpDateCovDbTab(table, stub, tab) > 0;
        // Kept: what is complete is written, also when a source has no table of its own.
        return std::ferror(tab) == 0;
    };
    return replace_file(merged_tab_path(), write) == Writing::done && done;
}

int RenameFileDBDir(const char* name, std::FILE* tab, _SOURCEFILE_OBJECT* record,
                    std::uint64_t* start)
{
    _SOURCEFILE_TAB own;
    const std::string path = temp_tab_path(name);
    int result = GetOneSourceFileTabInfo2(path.c_str(), &own);
    if (result == 0) {
        std::printf("Readinfo from '%s' failed in RenameFileDBDir\n", path.c_str());
    } else if (own.objlist != nullptr) {
        result = complete_record(*own.objlist, tab, *record, *start);
    }
    release_table(own);
    return result;
}

int CodeMeasure_Tool_WriteScanCfgString(const char* key, const char* value)
{
    return set_project_value(g_lxprj->szCovDictPath, key, value);
}

int CodeMeasure_Tool_WriteScanCfgInt(const char* key, int value)
{
    return CodeMeasure_Tool_WriteScanCfgString(key, std::to_string(value).c_str());
}
