// The records are in memory as in the file.
#include "contract/source_table.h"

#include "contract/dump_format.h"

#include <cstddef>
#include <cstring>

static_assert(sizeof(_SOURCEFILE_OBJECT) == 280, "a record has no padding");
static_assert(offsetof(_SOURCEFILE_OBJECT, size) == 260, "the name has 256 bytes");
static_assert(offsetof(_SOURCEFILE_OBJECT, instnum) == 272, "the counters follow the times");
static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "records are written as they are");

std::string source_name(const _SOURCEFILE_OBJECT& record)
{
    return {record.szName, ::strnlen(record.szName, sizeof record.szName - 1)};
}

std::string symbol_in_table(const _SOURCEFILE_OBJECT& record)
{
    const std::string name = source_name(record);
    return name.substr(0, name.rfind('.'));
}

std::string name_in_table(const std::string& symbol, const std::string& extension,
                          std::uint32_t or_bytes)
{
    return symbol + "." + extension +
           (or_bytes == 0 ? "" : DUMP_OR_MARK + std::to_string(or_bytes));
}

std::string_view bytes_of(const _SOURCEFILE_OBJECT& record)
{
    return {reinterpret_cast<const char*>(&record), sizeof record};
}

std::vector<_SOURCEFILE_OBJECT> read_source_table(std::string_view bytes)
{
    std::vector<_SOURCEFILE_OBJECT> records;
    if (!bytes.empty() && bytes.size() % sizeof(_SOURCEFILE_OBJECT) == 0) {
        records.resize(bytes.size() / sizeof(_SOURCEFILE_OBJECT));
        std::memcpy(static_cast<void*>(records.data()), bytes.data(), bytes.size());
    }
    return records;
}
