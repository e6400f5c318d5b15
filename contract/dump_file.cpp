// The sizes in the header are believed only when they fit the size of the file, so that a few bytes
// cannot ask for gigabytes.
#include "contract/dump_file.h"

#include "commonfunc/text_lines.h"
#include "contract/dump_format.h"

#include <cstddef>
#include <string>
#include <utility>

namespace
{

constexpr std::size_t WORD = DUMP_WORD;

class Reader
{
public:
    explicit Reader(std::string_view bytes) : lines_(bytes) {}

    Dump read()
    {
        if (!lines_.next() || lines_.rest_of_line() != DUMP_FORMAT) {
            throw FormatError(1, "this is no dump file of format 2");
        }
        while (lines_.next()) {
            const std::string_view key = lines_.word();
            if (key == DUMP_COUNTS) {
                read_counts();
                return std::move(dump_);
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
            order_ = lines_.rest_of_line();
            if (order_ != DUMP_LITTLE && order_ != DUMP_BIG) {
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
            lines_.number_of(fields.substr(at + 1), "size", DUMP_MAX_BYTES - WORD - bytes_);
        if (bytes % WORD != 0) {
            lines_.fail("an array does not hold whole counters");
        }
        dump_.sources.push_back({name.substr(0, name.rfind('.')), {}});
        sizes_.push_back(bytes);
        bytes_ += bytes;
    }

    void read_counts()
    {
        const std::uint64_t size = lines_.number("size", DUMP_MAX_BYTES);
        if (dump_.area.empty() || order_.empty()) {
            lines_.fail("there is no work area or no byte order before this line");
        }
        if (size != bytes_ + WORD) {
            lines_.fail("the arrays do not add up to " + std::to_string(size) + " bytes");
        }
        std::string_view rest = lines_.rest_of_text();
        if (rest.size() != size || !lines_.rest_of_line().empty()) {
            lines_.fail("there are not " + std::to_string(size) + " bytes after this line");
        }
        dump_.runs = next_word(rest);
        for (std::size_t i = 0; i < sizes_.size(); ++i) {
            std::vector<std::uint64_t>& counters = dump_.sources[i].counters;
            counters.reserve(sizes_[i] / WORD);
            for (std::size_t left = sizes_[i] / WORD; left > 0; --left) {
                counters.push_back(next_word(rest));
            }
        }
    }

    std::uint64_t next_word(std::string_view& rest) const
    {
        std::uint64_t word = 0;
        for (std::size_t i = 0; i < WORD; ++i) {
            const std::size_t place = order_ == DUMP_BIG ? WORD - 1 - i : i;
            word |= static_cast<std::uint64_t>(static_cast<unsigned char>(rest[i])) << 8 * place;
        }
        rest.remove_prefix(WORD);
        return word;
    }

    TextLines lines_;
    Dump dump_;
    std::string_view order_;
    std::vector<std::uint64_t> sizes_; ///< bytes of the arrays
    std::uint64_t bytes_ = 0;          ///< of all arrays so far
};

} // namespace

Dump read_dump(std::string_view bytes)
{
    return bytes.empty() ? Dump{} : Reader(bytes).read();
}
