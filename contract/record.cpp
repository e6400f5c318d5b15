// The reader believes nothing: objects and records may be cut, mixed up or made by others.
#include "contract/record.h"

#include "commonfunc/text_lines.h"
#include "contract/stub_modes.h"

#include <cstddef>
#include <sstream>

namespace
{

constexpr std::uint32_t MAX_BYTES = 1U << 30; ///< of one array or of one source's notes

constexpr const char* name_of(CounterSource source)
{
    return source == CounterSource::gcc ? "gcc" : "clang";
}

void write_function(std::ostream& out, const Record& record, const RecordedFunction& function)
{
    if (record.compiler == CounterSource::gcc) {
        out << "function " << function.ident << ' ' << function.lineno_checksum << ' '
            << function.cfg_checksum << ' ' << function.name << '\n';
    } else {
        out << "profile " << function.hash << ' ' << function.name << '\n';
    }
    for (const CounterRun& run : function.counters) {
        out << "counters " << run.kind << ' ' << run.number << ' ' << run.offset << '\n';
    }
}

/// Reads one record, without its first line.
class Reader
{
public:
    explicit Reader(std::string_view text) : text_(text), lines_(text) {}

    Record read()
    {
        while (lines_.next()) {
            const std::string_view key = lines_.word();
            if (key == "notes") {
                read_notes();
                check();
                return std::move(record_);
            }
            read_line(key);
        }
        lines_.fail("the record ends without its notes");
    }

private:
    std::uint32_t number(const char* what, std::uint32_t largest = UINT32_MAX)
    {
        return static_cast<std::uint32_t>(lines_.number(what, largest));
    }

    void read_line(std::string_view key)
    {
        if (key == "symbol") {
            record_.symbol = lines_.rest_of_line();
        } else if (key == "source") {
            record_.source = lines_.rest_of_line();
        } else if (key == "object") {
            record_.object = lines_.rest_of_line();
        } else if (key == "mode") {
            record_.stub_mode = static_cast<int>(number("stub mode", LAST_STUB_MODE));
        } else if (key == "command") {
            record_.compile_command = lines_.rest_of_line();
        } else if (key == "map") {
            read_map();
        } else if (key == "compiler") {
            record_.compiler =
                lines_.rest_of_line() == "clang" ? CounterSource::clang : CounterSource::gcc;
        } else if (key == "reader") {
            record_.reader = lines_.rest_of_line();
        } else if (key == "assembler") {
            record_.assembler.emplace_back(lines_.rest_of_line());
        } else if (key == "array") {
            if (!record_.functions.empty()) {
                lines_.fail("the size of the array stands after counters in it");
            }
            record_.array_bytes = number("size of the array", MAX_BYTES);
            record_.or_bytes = number("size of its end", record_.array_bytes);
        } else if (key == "version") {
            record_.version = number("version");
            record_.has_checksum = number("checksum", 1) != 0;
        } else {
            read_function_line(key);
        }
    }

    void read_function_line(std::string_view key)
    {
        if (key == "function") {
            RecordedFunction& function = record_.functions.emplace_back();
            function.ident = number("identifier");
            function.lineno_checksum = number("checksum");
            function.cfg_checksum = number("checksum");
            function.name = lines_.rest_of_line();
        } else if (key == "profile") {
            RecordedFunction& function = record_.functions.emplace_back();
            function.hash = lines_.number("hash", UINT64_MAX);
            function.name = lines_.rest_of_line();
        } else if (key == "counters") {
            read_counters();
        }
    }

    void read_map()
    {
        const std::string_view map = lines_.rest_of_line();
        const std::size_t at = map.rfind('=');
        if (at == map.npos) {
            lines_.fail("a map has no '='");
        }
        record_.path_maps.emplace_back(map.substr(0, at), map.substr(at + 1));
    }

    void read_counters()
    {
        if (record_.functions.empty()) {
            lines_.fail("counters of no function");
        }
        const CounterRun run = {number("kind of counters", 31), number("number", MAX_BYTES / 8),
                                number("offset", MAX_BYTES)};
        if (run.offset % 8 != 0 ||
            run.offset + std::uint64_t{8} * run.number > record_.array_bytes) {
            lines_.fail("counters that are not in the array");
        }
        record_.functions.back().counters.push_back(run);
    }

    void read_notes()
    {
        const std::uint32_t size = number("size of the notes", MAX_BYTES);
        const std::size_t start =
            static_cast<std::size_t>(lines_.rest_of_text().data() - text_.data());
        if (text_.size() - start != size) {
            lines_.fail("there are not " + std::to_string(size) + " bytes of notes");
        }
        record_.notes = text_.substr(start);
    }

    void check() const
    {
        if (record_.symbol.empty() || record_.source.empty() || record_.object.empty()) {
            lines_.fail("symbol, source or object is missing");
        }
        if (record_.array_bytes % 8 != 0 || record_.or_bytes % 8 != 0) {
            lines_.fail("the array does not hold whole counters");
        }
    }

    std::string_view text_;
    TextLines lines_;
    Record record_;
};

} // namespace

std::string to_bytes(const Record& record)
{
    std::ostringstream out;
    out << "symbol " << record.symbol << "\nsource " << record.source << "\nobject "
        << record.object << "\nmode " << record.stub_mode << "\ncommand " << record.compile_command
        << '\n';
    for (const auto& [real, recorded] : record.path_maps) {
        out << "map " << real << '=' << recorded << '\n';
    }
    out << "compiler " << name_of(record.compiler) << "\nreader " << record.reader << '\n';
    for (const std::string& word : record.assembler) {
        out << "assembler " << word << '\n';
    }
    out << "array " << record.array_bytes << ' ' << record.or_bytes << '\n';
    if (record.compiler == CounterSource::gcc) {
        out << "version " << record.version << ' ' << record.has_checksum << '\n';
    }
    for (const RecordedFunction& function : record.functions) {
        write_function(out, record, function);
    }
    out << "notes " << record.notes.size() << '\n' << record.notes;
    const std::string content = out.str();
    return "lltrecord 1 " + std::to_string(content.size()) + "\n" + content;
}

std::vector<Record> read_records(std::string_view bytes)
{
    std::vector<Record> records;
    while (!bytes.empty()) {
        TextLines first(bytes);
        if (!first.next() || first.word() != "lltrecord" || first.word() != "1") {
            throw FormatError(1, "this is no record of format 1");
        }
        const std::uint64_t length = first.number("length of the record", 2ULL * MAX_BYTES);
        const std::string_view rest = first.rest_of_text();
        if (length == 0 || length > rest.size()) {
            first.fail("the record is cut");
        }
        records.push_back(Reader(rest.substr(0, length)).read());
        bytes = rest.substr(length);
    }
    return records;
}
