// Lines that say what follows, then words in the byte order of the program that counted.
#include "lltcov/dump_file.h"

#include "commonfunc/text_lines.h"

#include <cstring>

namespace
{

constexpr std::uint64_t MAX_BYTES = 1U << 30; ///< of one source

/// file INDEX SYMBOLFILE BYTES: the source, and in `bytes` the size of its array.
DumpedSource read_source(TextLines& lines, std::uint64_t& bytes)
{
    lines.number("index", INT32_MAX);
    const std::string_view fields = lines.rest_of_line();
    const std::size_t at = fields.rfind(' ');
    if (at == fields.npos) {
        lines.fail("a name and a number are missing");
    }
    bytes = lines.number_of(fields.substr(at + 1), "size", MAX_BYTES);
    if (bytes % 8 != 0) {
        lines.fail("the array does not hold whole counters");
    }
    const std::string_view name = fields.substr(0, at);
    return {name.substr(0, name.rfind('.')), {}};
}

std::uint64_t word_at(std::string_view bytes, std::size_t at, bool is_swapped)
{
    std::uint64_t word = 0;
    std::memcpy(&word, bytes.data() + at, sizeof word);
    return is_swapped ? __builtin_bswap64(word) : word;
}

/// Takes the words behind the header, whose size is given and known to be there.
void read_words(Dump& dump, std::string_view bytes, const std::vector<std::uint64_t>& sizes,
                bool is_swapped)
{
    dump.runs = word_at(bytes, 0, is_swapped);
    std::size_t at = 8;
    for (std::size_t i = 0; i < sizes.size(); ++i) {
        for (const std::size_t end = at + sizes[i]; at < end; at += 8) {
            dump.sources[i].counters.push_back(word_at(bytes, at, is_swapped));
        }
    }
}

} // namespace

Dump read_dump(std::string_view bytes)
{
    Dump dump;
    if (bytes.empty()) {
        return dump;
    }
    TextLines lines(bytes);
    if (!lines.next() || lines.rest_of_line() != "lltcov 2") {
        throw FormatError(1, "this is no dump file of format 2");
    }
    bool is_swapped = false;
    std::uint64_t total = 8;
    std::vector<std::uint64_t> sizes;
    while (lines.next()) {
        const std::string_view key = lines.word();
        if (key == "module") {
            dump.module = lines.rest_of_line();
        } else if (key == "buid") {
            dump.buid = lines.rest_of_line();
        } else if (key == "area") {
            dump.area = lines.rest_of_line();
        } else if (key == "test") {
            dump.test = lines.rest_of_line();
        } else if (key == "order") {
            is_swapped =
                (lines.rest_of_line() == "big") != (__BYTE_ORDER__ == __ORDER_BIG_ENDIAN__);
        } else if (key == "file") {
            dump.sources.push_back(read_source(lines, sizes.emplace_back()));
            total += sizes.back();
        } else if (key == "counts") {
            if (lines.number("size", UINT64_MAX) != total || lines.rest_of_text().size() != total) {
                lines.fail("there are not " + std::to_string(total) + " bytes of counts");
            }
            if (dump.area.empty()) {
                lines.fail("the file names no work area");
            }
            read_words(dump, lines.rest_of_text(), sizes, is_swapped);
            return dump;
        }
    }
    lines.fail("the file is cut behind this line");
}
