// GCC counts a function FUNCTION in arrays `__gcov0.FUNCTION` (0: the kind of its counters) and
// describes it for its own runtime in tables: `.LPBX2` points to `.LPBX0` (version, stamp,
// checksum, file name, how each kind joins two runs), that to `.LPBX1`, a list of a
// `__gcov_.FUNCTION` for each function (identifier, two checksums, number and place of its
// counters). The tables are read and left out; each counter gets a place in one array. Only names
// and data directives are understood, so that this works for every machine: how a counter is
// addressed stays as it is, and a name is replaced by an expression. Anything else that names a
// counter or a table is refused.
#include "commonfunc/text.h"
#include "toolset/counters/asm_line.h"
#include "toolset/counters/counter_text.h"
#include "toolset/counters/gcc_tables.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace
{

using Texts = std::vector<std::string_view>;

constexpr std::string_view COUNTER = "__gcov";
constexpr std::string_view TABLE = "LPBX";
constexpr std::string_view SANITIZED = "LASAN0:";
constexpr std::string_view GUARDED = "lltcov_guarded";

/// What the compiler calls for the program's fork, exec and the like: the runtime has it.
bool is_function(std::string_view name)
{
    return is_one_of(name, {"__gcov_fork", "__gcov_execl", "__gcov_execlp", "__gcov_execle",
                            "__gcov_execv", "__gcov_execvp", "__gcov_execve", "__gcov_dump",
                            "__gcov_reset", "__gcov_init", "__gcov_exit"});
}

std::string_view operand_of(const AsmLine& line)
{
    return line.rest.substr(0, line.rest.find_first_of(" \t,#@;|!"));
}

class Reader
{
public:
    explicit Reader(std::string_view text) : text_(text)
    {
        sanitized_ = std::min(text.find(SANITIZED), text.size());
    }

    CounterText read()
    {
        walk_lines(
            text_, COUNTER, TABLE, [this](std::string_view between) { out_.keep(between); },
            [this](std::size_t start) { return read_line(start); });
        if (guarded_ != 0) {
            add_own("\t.local\t" + std::string(GUARDED) + "\n\t.comm\t" + std::string(GUARDED) +
                    "," + std::to_string(guarded_) + "," + std::to_string(ARRAY_ALIGNMENT) + "\n");
        }
        place_counters(parts_, out_);
        return std::move(out_);
    }

private:
    /// Takes the line apart, a definition with its data; returns where the text goes on.
    std::size_t read_line(std::size_t start)
    {
        const AsmLine line = line_at(text_, start);
        const std::size_t next = start + line.whole.size();
        const std::string_view name = name_at(line.rest, 0);
        const std::string_view label = line.word.substr(0, line.word.size() - 1);
        const bool is_ours = is_counter(name) || is_table(name);
        if (line.is_string() || is_one_of(line.word, {".file", ".ident"})) {
            out_.keep(text_.substr(start, next - start));
        } else if (line.is_label() && (is_counter(label) || is_table(label))) {
            return read_definition(label, start, next);
        } else if (line.word == ".comm" && is_ours) {
            read_common(name, line.rest.substr(name.size()));
        } else if (is_ours && line.is_attribute()) {
            // goes with the definition
        } else if (line.word == ".section") {
            keep_section(line, start, next);
        } else if (is_ours && start > sanitized_ && line.is_value() && line.rest == name) {
            give_room(line, next);
        } else {
            rename(line.whole);
        }
        return next;
    }

    void add_own(std::string text)
    {
        out_.own_texts.push_back(std::move(text));
        out_.pieces.push_back({out_.own_texts.back()});
    }

    /// An entry in the list of an address sanitizer: a variable, its size and that with the guard
    /// after it. What is not there any more gets room of its own to be guarded.
    void give_room(const AsmLine& line, std::size_t next)
    {
        const AsmLine size = line_at(text_, std::min(next, text_.size() - 1));
        const std::size_t guarded = next + size.whole.size();
        const AsmLine with_guard = line_at(text_, std::min(guarded, text_.size() - 1));
        if (!size.is_value() || !with_guard.is_value()) {
            refuse(line.whole);
        }
        add_own("\t" + std::string(line.word) + "\t" + std::string(GUARDED) + "+" +
                std::to_string(guarded_) + "\n");
        guarded_ += (number_of(operand_of(with_guard)) + ARRAY_ALIGNMENT - 1) / ARRAY_ALIGNMENT *
                    ARRAY_ALIGNMENT;
    }

    /// A section of tables or counters alone gives way to one that is left empty: what aligns it
    /// must not come into the section before.
    void keep_section(const AsmLine& line, std::size_t start, std::size_t next)
    {
        const bool is_of_table = line.rest.find(".__gcov") != line.rest.npos ||
                                 line.rest.find(".LPBX") != line.rest.npos ||
                                 line.rest.find("$LPBX") != line.rest.npos;
        if (is_of_table) {
            add_own("\t.section\t.lltcov_empty,\"e\",%progbits\n");
        } else {
            out_.keep(text_.substr(start, next - start));
        }
    }

    /// .comm NAME,SIZE,ALIGNMENT in bytes
    void read_common(std::string_view name, std::string_view rest)
    {
        const std::size_t comma = rest.rfind(',');
        if (comma == 0 || comma == rest.npos) {
            refuse(name);
        }
        CounterDefinition& definition = parts_.definitions[name];
        definition.size = number_of(rest.substr(1, comma - 1));
        definition.alignment = number_of(rest.substr(comma + 1));
    }

    /// The data after a label: bytes of counters, or the words of a table.
    std::size_t read_definition(std::string_view label, std::size_t start, std::size_t next)
    {
        Texts words;
        std::uint32_t size = 0;
        while (next < text_.size()) {
            const AsmLine line = line_at(text_, next);
            if (!line.is_value() && !line.is_padding()) {
                break;
            }
            if (line.is_padding()) {
                size += number_of(operand_of(line));
            } else {
                words.push_back(operand_of(line));
            }
            next += line.whole.size();
        }
        if (is_counter(label)) {
            parts_.definitions[label].size = size;
            parts_.definitions[label].alignment = alignment_before(start);
        } else {
            parts_.tables[label] = std::move(words);
        }
        return next;
    }

    /// Of the directive above a label. ".align" means bytes on some machines and a power of two on
    /// others: counters are aligned to 4 bytes at least, so small numbers are taken for powers.
    std::uint32_t alignment_before(std::size_t label)
    {
        std::size_t end = label;
        for (int lines = 0; lines < 5 && end > 0; ++lines) {
            const std::size_t start = end < 2 ? 0 : text_.rfind('\n', end - 2) + 1;
            const AsmLine line = line_at(text_, start);
            if (is_one_of(line.word, {".align", ".p2align", ".balign"})) {
                const std::uint32_t number = number_of(operand_of(line));
                return line.word != ".balign" && number < 8 ? 1U << number : number;
            }
            end = start;
        }
        return 8;
    }

    static bool is_head(std::string_view name)
    {
        return is_table(name) && name.substr(1) == "LPBX0";
    }

    /// GCC 11 calls a runtime with its tables before main. Ours has functions of these names that
    /// do nothing, so that what they are called with does not matter: the array takes its place.
    bool has_starter() const { return text_.find("_sub_I_00100_") != text_.npos; }

    /// An instruction or data that names counters: each name becomes a place in the array.
    void rename(std::string_view line)
    {
        std::size_t done = 0;
        for (std::size_t at = 0; at < line.size(); ++at) {
            const std::string_view name = name_at(line, at);
            if (name.empty() || (name[0] == '$' && !is_table(name))) {
                continue; // "$" also marks a number
            }
            if (is_counter(name)) {
                out_.pieces.push_back({line.substr(done, at - done), 0});
                parts_.references.emplace_back(out_.pieces.size() - 1, name);
                done = at + name.size();
            } else if (is_head(name) && has_starter()) {
                out_.pieces.push_back({line.substr(done, at - done), 0});
                done = at + name.size();
            } else if (is_table(name) || (begins_with(name, COUNTER) && !is_function(name))) {
                refuse(line);
            }
            at += name.size() - 1;
        }
        out_.keep(line.substr(done));
    }

    std::string_view text_;
    std::size_t sanitized_;     ///< where a sanitizer's list begins; the text's size without one
    std::uint32_t guarded_ = 0; ///< bytes of the room that stands in for what the list names
    CounterText out_;
    GccParts parts_;
};

} // namespace

CounterText read_gcc_text(std::string_view text)
{
    return Reader(text).read();
}
