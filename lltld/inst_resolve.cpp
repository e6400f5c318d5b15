// The resolution stops at the first symbol whose INI file went missing: the coverage data would
// be incomplete, and the user is told how to get it back.
#include "lltld/inst_resolve.h"

#include "commonfunc/Caddis_func.h"
#include "commonfunc/file_ops.h"
#include "commonfunc/message.h"
#include "commonfunc/text.h"
#include "contract/source_ini.h"
#include "lltld/cov_paths.h"
#include "lltld/expired_inst.h"

#include <cstdio>
#include <cstring>
#include <list>
#include <string>
#include <unordered_map>

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

/// Source and object path of a record, as one key.
std::string place_of(const _STInstInfo& record)
{
    return std::string(record.szSrcFileName) + '\0' + record.szObjFileName;
}

} // namespace

int GetSrcObjPath(char* src, char* obj, const char* symbol)
{
    const std::string ini = symbol_ini_path(symbol);
    if (QMRFileExists(ini.c_str()) == 0) {
        TUSKLog(LOG_COMPONENT, LOG_MODULE, LOG_ERROR, CODE_NO_INI_FILE,
                "Can not find the initialization file '%s'!\n", ini.c_str());
        return 0;
    }
    if (!read_source_ini(ini.c_str(), src, obj, INST_NAME_SIZE)) {
        std::printf("Get the value of 'StubFilePath1' from the initialization file '%s' failed!\n",
                    ini.c_str());
        return 0;
    }
    return 1;
}

int GetNewInstInfo(_InstFileList& list, std::vector<_STInstInfo>& new_records,
                   std::vector<_STInstInfo>& old_records)
{
    _InstFile* node = list.pHead;
    for (int i = 0; i < list.iCount && node != nullptr; ++i, node = node->pNext) {
        _STInstInfo info;
        copy_bounded(info.szSymbolName, node->szInstFileName);
        if (GetSrcObjPath(info.szSrcFileName, info.szObjFileName, info.szSymbolName) == 0) {
            report_unresolved(info, old_records);
            return 0;
        }
        copy_bounded(node->szSrcFileName, info.szSrcFileName);
        copy_bounded(node->szObjFileName, info.szObjFileName);
        new_records.push_back(info);
    }
    return 1;
}

int GetSymbolInfoFromTuple(_STInstInfo* info, std::vector<_STInstInfo>& old_records)
{
    for (const _STInstInfo& old : old_records) {
        if (std::strcmp(old.szSymbolName, info->szSymbolName) == 0) {
            copy_bounded(info->szSrcFileName, old.szSrcFileName);
            copy_bounded(info->szObjFileName, old.szObjFileName);
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
    // The old records of each place in order, so that one look replaces a scan. A replacement is
    // appended and takes part in later comparisons, as it would in the scan.
    std::list<_STInstInfo> records(old_records.begin(), old_records.end());
    std::unordered_map<std::string, std::list<std::list<_STInstInfo>::iterator>> by_place;
    for (auto it = records.begin(); it != records.end(); ++it) {
        by_place[place_of(*it)].push_back(it);
    }
    for (const _STInstInfo& fresh : new_records) {
        auto& same_place = by_place[place_of(fresh)];
        for (auto at = same_place.begin(); at != same_place.end(); ++at) {
            if (std::strcmp((*at)->szSymbolName, fresh.szSymbolName) != 0) {
                DeleteInstInfoFromLLTTEMP((*at)->szSymbolName);
                records.erase(*at);
                same_place.erase(at);
                same_place.push_back(records.insert(records.end(), fresh));
                break;
            }
        }
    }
    old_records.assign(records.begin(), records.end());
}

bool update_tuple_database()
{
    std::vector<_STInstInfo> old_records;
    std::vector<_STInstInfo> new_records;
    const std::string path = tuple_db_path();
    if (!path_fits(path)) {
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
