// Kept: an empty file leaves the records of an earlier read in place, so a work table that is used
// for one file after the other answers with them.
#include "lltld/source_tab.h"

#include "commonfunc/Caddis_func.h"
#include "commonfunc/file_io.h"
#include "commonfunc/file_ops.h"
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

void log_empty(unsigned int code, const char* path)
{
    TUSKLog(LOG_COMPONENT, LOG_MODULE, LOG_WARNING, code, "The content of '%s' is empty!\n", path);
}

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

/// The two readers differ in when an empty file is noticed and under which code it is logged.
int read_table(const char* path, _SOURCEFILE_TAB& table, bool grow_first, unsigned int empty_code)
{
    const File file = open_file(path, "rbe");
    if (!file) {
        std::printf("File \"%s\" open failed!\n", path);
        return 0;
    }
    std::fseek(file.get(), 0, SEEK_END);
    const long size = std::ftell(file.get());
    std::rewind(file.get());
    if (size < 0 || size > INT_MAX) {
        std::printf("Error:Read insted info from '%s' failed!\n", path);
        return 0;
    }
    if (grow_first && !grow(table, static_cast<int>(size))) {
        return 0;
    }
    if (size == 0) {
        log_empty(empty_code, path);
        return 1;
    }
    if (!grow_first && !grow(table, static_cast<int>(size))) {
        return 0;
    }
    const auto bytes = static_cast<std::size_t>(size);
    if (std::fread(static_cast<void*>(table.objlist), 1, bytes, file.get()) != bytes) {
        std::printf("Error:Read insted info from '%s' failed!\n", path);
        return 0;
    }
    if (bytes < sizeof(_SOURCEFILE_OBJECT)) {
        warn("'%s' holds %zu bytes, less than one record; recompile the source", path, bytes);
    }
    table.elementcount = static_cast<int>(bytes / sizeof(_SOURCEFILE_OBJECT));
    return 1;
}

} // namespace

int GetOneSourceFileTabInfo2(const char* path, _SOURCEFILE_TAB* table)
{
    return path != nullptr ? read_table(path, *table, true, CODE_EMPTY_TABLE) : 0;
}

int CodeMeasure_Client_GetSourceFileTab(_SOURCEFILE_TAB* table)
{
    return read_table(merged_tab_path().c_str(), *table, false, CODE_EMPTY_MERGED_TABLE);
}

int SrcFileTabInfoWriteToCovTab(const char* path, std::FILE* out, _SOURCEFILE_TAB* table,
                                int* counter)
{
    if (QMRFileExists(path) == 0) {
        return 1;
    }
    if (GetOneSourceFileTabInfo2(path, table) == 0) {
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
