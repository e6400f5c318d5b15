// File format: a plain sequence of 780-byte records in list order, no header, no count.
//
//   offset  size  content
//        0   260  source path, NUL-terminated, zero-filled
//      260   260  object path, likewise
//      520   260  coverage symbol, likewise
//
// It is read and written in pieces of whole records: with thousands of records the fields' empty
// ends would be most of the memory.
#include "lltld/tuple_db.h"

#include "commonfunc/Caddis_func.h"
#include "commonfunc/file_io.h"
#include "commonfunc/message.h"
#include "lltld/inst_file_list.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <string>
#include <string_view>
#include <utility>

namespace
{

constexpr std::size_t FIELD_SIZE = INST_NAME_SIZE;
constexpr std::size_t RECORD_SIZE = 3 * FIELD_SIZE;
constexpr std::size_t PIECE_SIZE = 80 * RECORD_SIZE;

/// The text of the record's field; what is cut off counts as zeros.
std::string_view field_of(std::string_view record, std::size_t field)
{
    const std::string_view bytes =
        record.substr(std::min(field * FIELD_SIZE, record.size()), FIELD_SIZE - 1);
    return bytes.substr(0, bytes.find('\0'));
}

_STInstInfo decoded(std::string_view record, InstTexts& texts)
{
    std::string text;
    std::size_t starts[3];
    for (std::size_t field = 0; field < 3; ++field) {
        starts[field] = text.size();
        text.append(field_of(record, field)).append(1, '\0');
    }
    const char* const kept = texts.emplace_back(std::move(text)).c_str();
    return {kept + starts[0], kept + starts[1], kept + starts[2]};
}

bool write_field(std::string text, std::FILE* file)
{
    text.resize(FIELD_SIZE);
    return std::fwrite(text.data(), text.size(), 1, file) == 1;
}

} // namespace

int ReadOldInstInfoFromDb(const char* path, std::vector<_STInstInfo>& out, InstTexts& texts)
{
    const std::size_t before = out.size();
    std::size_t size = 0;
    const auto take = [&](const char* piece, std::size_t length) {
        size += length;
        for (std::string_view left(piece, length); !left.empty();) {
            const std::size_t bytes = std::min(RECORD_SIZE, left.size());
            out.push_back(decoded(left.substr(0, bytes), texts));
            left.remove_prefix(bytes);
        }
        return true;
    };
    const Reading reading = read_in_pieces(path, take, PIECE_SIZE);
    if (reading == Reading::empty || (reading == Reading::missing && means_absent(errno))) {
        return 1;
    }
    if (reading != Reading::done) {
        warn("'%s' is not read: %s; data of superseded sources stay in '%s'", path, why_not_read(),
             g_lxprj->szLLTTEMP);
        if (reading == Reading::not_opened) {
            std::printf("fopen '%s' error, in FUNCTION 'ReadOldInstInfoFromDb'\n", path);
        }
        out.resize(before);
        return 0;
    }
    if (size % RECORD_SIZE != 0) {
        warn("'%s' is cut after %zu bytes; data of superseded sources may stay in '%s'", path, size,
             g_lxprj->szLLTTEMP);
    }
    return 1;
}

int WriteNewInstInfoToDb(const char* path)
{
    const auto write = [](std::FILE* file) {
        for (const _InstFile* node = instFileList.pHead; node != nullptr; node = node->pNext) {
            if (!write_field(node->szSrcFileName, file) ||
                !write_field(node->szObjFileName, file) ||
                !write_field(node->szInstFileName, file)) {
                return false;
            }
        }
        return true;
    };
    return replace_file(path, write) == Writing::not_opened ? 0 : 1;
}
