// The sizes in the header are believed only when they fit the size of the file, so that a few bytes
// cannot ask for gigabytes.
#include "lltcov/report/dump_file.h"

#include "commonfunc/text_lines.h"

#include <cstddef>
#include <string>
#include <utility>

namespace
{

constexpr std::size_t WORD = 8;
constexpr std::uint64_t MAX_BYTES = std::uint64_t{1} << 31; ///< of all arrays

class Reader
{
public:
    explicit Reader(std::string_view bytes) : lines_(bytes) {}

    Dump read()
    {
        if (!lines_.next() || lines_.rest_of_line() != "lltcov 2") {
            throw FormatError(1, "this is no dump file of format 2");
        }
        while (lines_.next()) {
            const std::string_view key = lines_.word();
            if (key == "counts") {
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
        if (key == "module") {
            dump_.module = lines_.rest_of_line();
        } else if (key == "buid") {
            dump_.buid = lines_.rest_of_line();
        } else if (key == "area") {
            dump_.area = lines_.rest_of_line();
        } else if (key == "test") {
            dump_.test = lines_.rest_of_line();
        } else if (key == "order") {
            order_ = lines_.rest_of_line();
            if (order_ != "little" && order_ != "big") {
                lines_.fail("the byte order is not known");
            }
        } else if (key == "file") {
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
            lines_.number_of(fields.substr(at + 1), "size", MAX_BYTES - WORD - bytes_);
        if (bytes % WORD != 0) {
            lines_.fail("an array does not hold whole counters");
        }
        dump_.sources.push_back({name.substr(0, name.rfind('.')), {}});
        sizes_.push_back(bytes);
        bytes_ += bytes;
    }

    void read_counts()
    {
        const std::uint64_t size = lines_.number("size", MAX_BYTES);
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
            const std::size_t place = order_ == "big" ? WORD - 1 - i : i;
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
