// The sizes in the header are believed only when they fit the size of the file, so that a few bytes
// cannot ask for gigabytes; and what is no dump is refused before much of it was read.
#include "contract/dump_file.h"

#include "commonfunc/text_lines.h"
#include "contract/dump_format.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

namespace
{

constexpr std::size_t WORD = DUMP_WORD;

std::uint64_t word_of(const char* bytes, std::string_view order)
{
    std::uint64_t word = 0;
    for (std::size_t i = 0; i < WORD; ++i) {
        const std::size_t place = order == DUMP_BIG ? WORD - 1 - i : i;
        word |= static_cast<std::uint64_t>(static_cast<unsigned char>(bytes[i])) << 8 * place;
    }
    return word;
}

/// Where the header ends that these bytes begin with; `npos` when that is beyond them.
std::size_t end_of_header(std::string_view start)
{
    const std::size_t last_line = start.find("\n" DUMP_COUNTS " ");
    const std::size_t end = last_line == start.npos ? start.npos : start.find('\n', last_line + 1);
    return end == start.npos ? start.npos : end + 1;
}

/// Takes the lines of a header apart.
class HeaderReader
{
public:
    /// `rest` is the number of bytes that follow the text in the file.
    HeaderReader(std::string_view text, std::uint64_t rest, Dump& dump)
        : lines_(text), rest_(rest), dump_(dump)
    {
    }

    void read()
    {
        lines_.next(); // the format
        while (lines_.next()) {
            const std::string_view key = lines_.word();
            if (key == DUMP_COUNTS) {
                read_size();
                return;
            }
            read_line(key);
        }
        lines_.fail("the file is cut after this line");
    }

private:
    /// Lines of other keys belong to later versions.
    void read_line(std::string_view key)
    {
        if (key == DUMP_MODULE) {
            dump_.module = lines_.rest_of_line();
        } else if (key == DUMP_BUID) {
            dump_.buid = lines_.rest_of_line();
        } else if (key == DUMP_AREA) {
            dump_.area = lines_.rest_of_line();
        } else if (key == DUMP_TEST) {
            dump_.test = lines_.rest_of_line();
        } else if (key == DUMP_ORDER) {
            dump_.order = lines_.rest_of_line();
            if (dump_.order != DUMP_LITTLE && dump_.order != DUMP_BIG) {
                lines_.fail("the byte order is not known");
            }
        } else if (key == DUMP_FILE) {
            read_source();
        }
    }

    /// file INDEX SYMBOL.EXTENSION BYTES
    void read_source()
    {
        lines_.number("index", INT32_MAX);
        const std::string_view fields = lines_.rest_of_line();
        const std::size_t at = fields.rfind(' ');
        if (at == fields.npos) {
            lines_.fail("a name and a size are missing");
        }
        const std::string_view name = fields.substr(0, at);
        const std::uint64_t bytes =
            lines_.number_of(fields.substr(at + 1), "size", DUMP_MAX_BYTES - bytes_);
        if (bytes % WORD != 0) {
            lines_.fail("an array does not hold whole counters");
        }
        dump_.sources.push_back({name.substr(0, name.rfind('.')), bytes / WORD, bytes_, {}});
        bytes_ += bytes;
    }

    void read_size()
    {
        const std::uint64_t size = lines_.number("size", DUMP_MAX_BYTES);
        if (dump_.area.empty() || dump_.order.empty()) {
            lines_.fail("there is no work area or no byte order before this line");
        }
        if (size != bytes_) {
            lines_.fail("the arrays do not add up to " + std::to_string(size) + " bytes");
        }
        if (rest_ != size || !lines_.rest_of_line().empty()) {
            lines_.fail("there are not " + std::to_string(size) + " bytes after this line");
        }
    }

    TextLines lines_;
    std::uint64_t rest_;
    Dump& dump_;
    std::uint64_t bytes_ = WORD; ///< of the number of processes and all arrays so far
};

} // namespace

DumpReader::DumpReader(std::uint64_t file_size, Bytes bytes) : bytes_(std::move(bytes))
{
    if (file_size > DUMP_MAX_HEADER + DUMP_MAX_BYTES) {
        throw FormatError(1, "the file is larger than any dump");
    }
    if (file_size > 0) {
        read_header(file_size);
    }
}

void DumpReader::read_header(std::uint64_t file_size)
{
    constexpr std::size_t FIRST_PIECE = 16384;
    const std::uint64_t largest = std::min<std::uint64_t>(file_size, DUMP_MAX_HEADER);
    std::vector<char>& header = dump_.header;
    std::size_t end = std::string_view::npos;
    while (end == std::string_view::npos && header.size() < largest) {
        const std::size_t known = header.size();
        header.resize(std::min<std::size_t>(largest, std::max(FIRST_PIECE, 4 * known)));
        bytes_(known, &header[known], header.size() - known);
        const std::string_view start(header.data(), header.size());
        if (start.substr(0, sizeof DUMP_FORMAT) != DUMP_FORMAT "\n") {
            throw FormatError(1, "this is no dump file of format 2");
        }
        end = end_of_header(start);
    }
    if (end == std::string_view::npos && header.size() < file_size) {
        throw FormatError(1, "the header is larger than that of any dump");
    }
    const std::string_view text = std::string_view(header.data(), header.size()).substr(0, end);
    HeaderReader(text, file_size - text.size(), dump_).read();
    char runs[WORD] = {};
    bytes_(text.size(), runs, WORD);
    dump_.runs = word_of(runs, dump_.order);
    for (DumpedSource& source : dump_.sources) {
        source.offset += text.size();
    }
}

void DumpReader::read_counters(DumpedSource& source)
{
    std::vector<char> bytes(65536);
    source.counters.reserve(source.size);
    for (std::size_t done = 0, size = 0; done < source.size * WORD; done += size) {
        size = std::min(bytes.size(), source.size * WORD - done);
        bytes_(source.offset + done, bytes.data(), size);
        for (std::size_t at = 0; at < size; at += WORD) {
            source.counters.push_back(word_of(&bytes[at], dump_.order));
        }
    }
}

Dump read_dump(std::string_view bytes)
{
    DumpReader reader(bytes.size(), [&](std::uint64_t offset, char* to, std::size_t size) {
        std::memcpy(to, bytes.data() + offset, size);
    });
    for (DumpedSource& source : reader.dump().sources) {
        reader.read_counters(source);
    }
    return std::move(reader.dump());
}

std::string moved_dump(std::string_view bytes, const std::string& area, const std::string& test)
{
    std::string out;
    TextLines lines(bytes);
    std::string_view key;
    while (key != DUMP_COUNTS && lines.next()) {
        std::string line(lines.rest_of_line());
        key = lines.word();
        if (key == DUMP_AREA) {
            line = DUMP_AREA " " + area + (test.empty() ? "" : "\n" DUMP_TEST " " + test);
        }
        if (key != DUMP_TEST) {
            out += line + "\n";
        }
    }
    return out.append(lines.rest_of_text());
}
