// Kept: an empty file leaves the records of an earlier read in place, so a work table that is used
// for one file after the other answers with them.
#include "lltld/source_tab.h"

#include "commonfunc/Caddis_func.h"
#include "commonfunc/file_io.h"
#include "commonfunc/message.h"
#include "commonfunc/text.h"
#include "lltld/cov_paths.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <string>
#include <string_view>

namespace
{

constexpr unsigned int CODE_EMPTY_TABLE = 10;
constexpr unsigned int CODE_EMPTY_MERGED_TABLE = 11;

/// Makes room for `size` bytes; the buffer only grows. False after a message.
bool grow(_SOURCEFILE_TAB& table, int size)
{
    if (table.listsize >= size) {
        return true;
    }
    release_table(table);
    // At least one whole record, so that a shorter file reads as a record filled up with zeros.
    const auto bytes = std::max(static_cast<std::size_t>(size), sizeof(_SOURCEFILE_OBJECT));
    table.objlist = static_cast<_SOURCEFILE_OBJECT*>(std::calloc(1, bytes));
    if (table.objlist == nullptr) {
        std::puts("Allocate memory failed!");
        return false;
    }
    table.listsize = size;
    return true;
}

/// Reads the file into the table. Of all failures, reports only that memory ran out.
Reading load_table(const char* path, _SOURCEFILE_TAB& table)
{
    std::size_t bytes = 0;
    bool is_too_large = false;
    const Reading reading = read_file_into(path, [&](std::size_t size) -> char* {
        bytes = size;
        is_too_large = size > INT_MAX;
        return !is_too_large && grow(table, static_cast<int>(size))
                   ? reinterpret_cast<char*>(table.objlist)
                   : nullptr;
    });
    if (reading == Reading::done) {
        if (bytes < sizeof(_SOURCEFILE_OBJECT)) {
            warn("'%s' holds %zu bytes, less than one record; recompile the source", path, bytes);
        }
        table.elementcount = static_cast<int>(bytes / sizeof(_SOURCEFILE_OBJECT));
    }
    return is_too_large ? Reading::failed : reading;
}

/// The result of a reading, after its message; the readers log an empty file under codes of theirs.
int result_of(Reading reading, const char* path, unsigned int empty_code)
{
    switch (reading) {
    case Reading::missing:
    case Reading::not_opened:
        std::printf("File \"%s\" open failed!\n", path);
        return 0;
    case Reading::failed:
        std::printf("Error:Read insted info from '%s' failed!\n", path);
        return 0;
    case Reading::no_memory:
        return 0;
    case Reading::empty:
        TUSKLog(LOG_COMPONENT, LOG_MODULE, LOG_WARNING, empty_code,
                "The content of '%s' is empty!\n", path);
        return 1;
    case Reading::done:
        break;
    }
    return 1;
}

} // namespace

int GetOneSourceFileTabInfo2(const char* path, _SOURCEFILE_TAB* table)
{
    return path != nullptr ? result_of(load_table(path, *table), path, CODE_EMPTY_TABLE) : 0;
}

int CodeMeasure_Client_GetSourceFileTab(_SOURCEFILE_TAB* table)
{
    const std::string path = merged_tab_path();
    return result_of(load_table(path.c_str(), *table), path.c_str(), CODE_EMPTY_MERGED_TABLE);
}

int SrcFileTabInfoWriteToCovTab(const char* path, std::FILE* out, _SOURCEFILE_TAB* table,
                                int* counter)
{
    const Reading reading = load_table(path, *table);
    if (reading == Reading::missing) {
        return 1;
    }
    if (result_of(reading, path, CODE_EMPTY_TABLE) == 0) {
        return 0;
    }
    if (table->objlist == nullptr) {
        return 1;
    }
    _SOURCEFILE_OBJECT record = {};
    QMRStrcpy(record.szName, table->objlist->szName, sizeof record.szName);
    record.fileid = (*counter)++;
    if (!write_record(record, out)) {
        std::printf("Error:Write insted info to '%s/db/.tab' failed!\n", g_lxprj->szCovDictPath);
        return 0;
    }
    return 1;
}

bool write_record(const _SOURCEFILE_OBJECT& record, std::FILE* out)
{
    const std::string_view bytes = bytes_of(record);
    return std::fwrite(bytes.data(), bytes.size(), 1, out) == 1;
}

void release_table(_SOURCEFILE_TAB& table)
{
    std::free(table.objlist);
    table = _SOURCEFILE_TAB();
}
