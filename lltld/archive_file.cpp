// An archive is "!<arch>\n" or "!<thin>\n" and members: a header of 60 bytes, whose text begins
// with the member's name and has its size at 48, and the content, at even positions. The member "/"
// (or "/SYM64/") is the index of the symbols that the others define: a big-endian count, as many
// offsets, and the names one after the other. "//" holds long names, each ended by "/\n", which
// "/OFFSET" names. In a thin archive the other members have no content.
#include "lltld/archive_file.h"

#include "commonfunc/text.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

namespace
{

constexpr std::size_t HEADER_SIZE = 60;

std::string_view up_to(std::string_view text, std::string_view end)
{
    return text.substr(0, text.find(end));
}

/// The text's leading decimal number, 0 for none.
std::size_t number_in(std::string_view text)
{
    const int number = to_int(std::string(text).c_str());
    return number > 0 ? static_cast<std::size_t>(number) : 0;
}

/// The names of an index whose offsets have `width` bytes.
std::string_view names_of_index(std::string_view index, std::size_t width)
{
    std::uint64_t count = 0;
    for (const char byte : index.substr(0, width)) {
        count = count << 8 | static_cast<unsigned char>(byte);
    }
    return count < index.size() / width ? index.substr(width * (count + 1)) : std::string_view();
}

std::string_view name_of_member(std::string_view field, std::string_view long_names)
{
    if (field[0] != '/') {
        return up_to(field, field.find('/') != field.npos ? "/" : " ");
    }
    const std::size_t offset = number_in(field.substr(1));
    return up_to(long_names.substr(std::min(offset, long_names.size())), "/\n");
}

} // namespace

bool is_archive(std::string_view bytes)
{
    return begins_with(bytes, ARCHIVE_MAGIC) || begins_with(bytes, THIN_ARCHIVE_MAGIC);
}

ArchiveFile read_archive_file(std::string_view bytes)
{
    ArchiveFile archive;
    archive.is_thin = begins_with(bytes, THIN_ARCHIVE_MAGIC);
    if (!is_archive(bytes)) {
        return archive;
    }
    std::string_view long_names;
    for (std::size_t at = ARCHIVE_MAGIC.size(); at + HEADER_SIZE <= bytes.size();) {
        const std::string_view field = bytes.substr(at, 16);
        const std::string_view name = up_to(field, " ");
        const std::string_view content =
            bytes.substr(at + HEADER_SIZE, number_in(bytes.substr(at + 48, 10)));
        at += HEADER_SIZE;
        if (name == "//") {
            long_names = content;
        } else if (name == "/" || name == "/SYM64/") {
            archive.symbols = names_of_index(content, name == "/" ? 4 : 8);
        } else if (archive.is_thin) {
            archive.members.push_back({name_of_member(field, long_names), {}});
            continue;
        } else {
            archive.members.push_back({name_of_member(field, long_names), content});
        }
        at += content.size() + content.size() % 2;
    }
    return archive;
}
