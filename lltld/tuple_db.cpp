// File format: a plain sequence of 780-byte records in list order, no header, no count.
//
//   offset  size  content
//        0   260  source path, NUL-terminated, zero-filled
//      260   260  object path, likewise
//      520   260  coverage symbol, likewise
#include "lltld/tuple_db.h"

#include "commonfunc/Caddis_func.h"
#include "commonfunc/file_io.h"
#include "commonfunc/message.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <exception>
#include <string>

static_assert(sizeof(_STInstInfo) == 780, "a record has no padding");

int ReadOldInstInfoFromDb(const char* path, std::vector<_STInstInfo>& out)
{
    std::string content;
    switch (read_whole_file(path, content)) {
    case Reading::missing:
    case Reading::empty:
        return 1;
    case Reading::not_opened:
        std::printf("fopen '%s' error, in FUNCTION 'ReadOldInstInfoFromDb'\n", path);
        return 0;
    case Reading::no_memory:
    case Reading::failed:
        warn("'%s' is not read: %s; data of superseded sources stay in '%s'", path, why_not_read(),
             g_lxprj->szLLTTEMP);
        return 0;
    case Reading::done:
        break;
    }
    if (content.size() % sizeof(_STInstInfo) != 0) {
        warn("'%s' is cut after %zu bytes; data of superseded sources may stay in '%s'", path,
             content.size(), g_lxprj->szLLTTEMP);
    }
    const std::size_t before = out.size();
    try {
        out.resize(before + (content.size() + sizeof(_STInstInfo) - 1) / sizeof(_STInstInfo));
    } catch (const std::exception&) {
        return 0;
    }
    _STInstInfo* next = out.data() + before;
    for (std::size_t at = 0; at < content.size(); at += sizeof(_STInstInfo)) {
        _STInstInfo& record = *next++;
        std::memcpy(static_cast<void*>(&record), content.data() + at,
                    std::min(sizeof record, content.size() - at));
        for (char* field : {record.szSrcFileName, record.szObjFileName, record.szSymbolName}) {
            field[INST_NAME_SIZE - 1] = '\0';
        }
    }
    return 1;
}

int WriteNewInstInfoToDb(const char* path)
{
    std::string content;
    for (const _InstFile* node = instFileList.pHead; node != nullptr; node = node->pNext) {
        content.append(node->szSrcFileName, INST_NAME_SIZE);
        content.append(node->szObjFileName, INST_NAME_SIZE);
        content.append(node->szInstFileName, INST_NAME_SIZE);
    }
    return replace_file(path, content) == Writing::not_opened ? 0 : 1;
}
