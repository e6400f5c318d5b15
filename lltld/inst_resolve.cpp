// The resolution stops at the first symbol whose INI file went missing: the coverage data would
// be incomplete, and the user is told how to get it back.
#include "lltld/inst_resolve.h"

#include "commonfunc/Caddis_func.h"
#include "commonfunc/file_ops.h"
#include "commonfunc/message.h"
#include "contract/source_ini.h"
#include "lltld/cov_paths.h"
#include "lltld/expired_inst.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <numeric>
#include <string>
#include <string_view>
#include <utility>

namespace
{

constexpr unsigned int CODE_NO_INI_FILE = 17;

void report_unresolved(_STInstInfo& info, std::vector<_STInstInfo>& old_records)
{
    if (GetSymbolInfoFromTuple(&info, old_records) != 0) {
        print_fatal(
            "source code '%s' has been instrumented, but an important coverage file '%s' missed. probably you have deleted this file. please delete '%s', and re-compile your source code.\n",
            info.szSrcFileName, temp_ini_path(info.szSymbolName).substr(0, 511).c_str(),
            info.szObjFileName);
        return;
    }
    print_fatal(
        "Probably, you have deleted all of KESTO LLT informations, but you areusing incremental-compile or incremental-link\n"
        "solutions: \n"
        "firstly, recompile your source code without using lltwrapper;\n"
        "secondly, check your makefiles, probably there is something wrong with the 'MAKE CLEAN' rules;\n"
        "thirdly, if you don't want to solve the problems mentioned above currently, you must do not clean '%s' automatically.\n",
        g_lxprj->szLLTTEMP);
    print_fatal("please clear your environment, and recompile your source code.\n");
}

/// Source and object path of a record.
std::pair<std::string_view, std::string_view> place_of(const _STInstInfo& record)
{
    return {record.szSrcFileName, record.szObjFileName};
}

/// The indexes of the records, those of one place side by side in their order.
std::vector<std::size_t> sorted_by_place(const std::vector<_STInstInfo>& records)
{
    std::vector<std::size_t> indexes(records.size());
    std::iota(indexes.begin(), indexes.end(), std::size_t{0});
    std::stable_sort(indexes.begin(), indexes.end(), [&](std::size_t a, std::size_t b) {
        return place_of(records[a]) < place_of(records[b]);
    });
    return indexes;
}

} // namespace

int GetSrcObjPath(char* src, char* obj, const char* symbol)
{
    const std::string ini = symbol_ini_path(symbol);
    if (read_source_ini(ini.c_str(), src, obj, INST_NAME_SIZE)) {
        return 1;
    }
    if (QMRFileExists(ini.c_str()) == 0) {
        TUSKLog(LOG_COMPONENT, LOG_MODULE, LOG_ERROR, CODE_NO_INI_FILE,
                "Can not find the initialization file '%s'!\n", ini.c_str());
    } else {
        std::printf("Get the value of 'StubFilePath1' from the initialization file '%s' failed!\n",
                    ini.c_str());
    }
    return 0;
}

int GetNewInstInfo(_InstFileList& list, std::vector<_STInstInfo>& new_records,
                   std::vector<_STInstInfo>& old_records)
{
    new_records.reserve(new_records.size() + static_cast<std::size_t>(list.iCount));
    _InstFile* node = list.pHead;
    for (int i = 0; i < list.iCount && node != nullptr; ++i, node = node->pNext) {
        _STInstInfo info;
        info.szSymbolName = node->szInstFileName.c_str();
        char source[INST_NAME_SIZE] = {};
        char object[INST_NAME_SIZE] = {};
        if (GetSrcObjPath(source, object, info.szSymbolName) == 0) {
            report_unresolved(info, old_records);
            return 0;
        }
        info.szSrcFileName = (node->szSrcFileName = source).c_str();
        info.szObjFileName = (node->szObjFileName = object).c_str();
        new_records.push_back(info);
    }
    return 1;
}

int GetSymbolInfoFromTuple(_STInstInfo* info, std::vector<_STInstInfo>& old_records)
{
    for (const _STInstInfo& old : old_records) {
        if (std::strcmp(old.szSymbolName, info->szSymbolName) == 0) {
            info->szSrcFileName = old.szSrcFileName;
            info->szObjFileName = old.szObjFileName;
            return 1;
        }
    }
    return 0;
}

void UpdateDB_DelExpiredFile(std::vector<_STInstInfo>& old_records,
                             std::vector<_STInstInfo>& new_records)
{
    if (old_records.empty()) {
        old_records = new_records;
        return;
    }
    std::vector<std::size_t> by_place = sorted_by_place(old_records);
    const auto is_before = [&](std::size_t index, const _STInstInfo& record) {
        return place_of(old_records[index]) < place_of(record);
    };
    for (const _STInstInfo& fresh : new_records) {
        auto at = std::lower_bound(by_place.begin(), by_place.end(), fresh, is_before);
        const auto end = std::find_if(at, by_place.end(), [&](std::size_t index) {
            return place_of(old_records[index]) != place_of(fresh);
        });
        at = std::find_if(at, end, [&](std::size_t index) {
            return std::strcmp(old_records[index].szSymbolName, fresh.szSymbolName) != 0;
        });
        if (at != end) {
            DeleteInstInfoFromLLTTEMP(old_records[*at].szSymbolName);
            old_records[*at].szSymbolName = nullptr; // taken out below, so that indexes stay
            // The new record is the last one of its place, and of all.
            std::rotate(at, at + 1, end);
            *(end - 1) = old_records.size();
            old_records.push_back(fresh);
        }
    }
    const auto is_out = [](const _STInstInfo& record) { return record.szSymbolName == nullptr; };
    old_records.erase(std::remove_if(old_records.begin(), old_records.end(), is_out),
                      old_records.end());
}

bool update_tuple_database()
{
    std::vector<_STInstInfo> old_records;
    std::vector<_STInstInfo> new_records;
    InstTexts old_texts;
    const std::string path = tuple_db_path();
    if (!path_fits(path)) {
        return false;
    }
    ReadOldInstInfoFromDb(path.c_str(), old_records, old_texts);
    if (GetNewInstInfo(instFileList, new_records, old_records) == 0) {
        return false;
    }
    UpdateDB_DelExpiredFile(old_records, new_records);
    WriteNewInstInfoToDb(path.c_str());
    return true;
}
