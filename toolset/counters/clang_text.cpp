// Clang counts a function FUNCTION in an array `__profc_FUNCTION` in the section `__llvm_prf_cnts`,
// beside which `__llvm_prf_data` has a table `__profd_FUNCTION` for its own runtime; both are read
// and left out, and each counter gets a place in one array. What the counters mean (the coverage
// map, the names) stays in the object: LLVM's own reader finds it there. Only names and data
// directives are understood, so that this works for every machine: how a counter is addressed stays
// as it is, and a name is replaced by an expression. Anything else that names a counter or a table
// is refused.
#include "commonfunc/text.h"
#include "toolset/counters/asm_line.h"
#include "toolset/counters/clang_tables.h"
#include "toolset/counters/counter_text.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

// Names must be plain text, and the assembler a program of its own.
const char* const CLANG_OPTIONS[] = {"-fprofile-instr-generate",
                                     "-fcoverage-mapping",
                                     "-fno-integrated-as",
                                     "-mllvm",
                                     "-enable-name-compression=false",
                                     nullptr};

namespace
{

constexpr std::string_view COUNTERS = "__profc_";
constexpr std::string_view TABLE = "__profd_";

/// What a name stands for; `unknown` is what clang's runtime has beside, which is refused.
enum class Owner { other, counters, table, unknown };

struct Name {
    Owner owner;
    std::string_view function;
};

/// Local labels have a prefix; another one than this is refused where the counters are defined.
Name read_name(std::string_view name)
{
    if (!name.empty() && name[0] == '"') {
        name = name.substr(1, name.size() - 2);
    }
    name.remove_prefix(begins_with(name, ".L") ? 2 : 0);
    if (begins_with(name, COUNTERS)) {
        return {Owner::counters, name.substr(COUNTERS.size())};
    }
    if (begins_with(name, TABLE)) {
        return {Owner::table, name.substr(TABLE.size())};
    }
    const bool is_unknown =
        begins_with(name, "__profvp_") || begins_with(name, "__profbm_") ||
        is_one_of(name, {"__llvm_profile_runtime", "__llvm_profile_counter_bias",
                         "__llvm_profile_bitmap_bias", "__llvm_profile_instrument_target",
                         "__llvm_profile_instrument_memop"});
    return {is_unknown ? Owner::unknown : Owner::other, {}};
}

class Reader
{
public:
    explicit Reader(std::string_view text) : text_(text) {}

    CounterText read()
    {
        walk_lines(
            text_, "__prof", "__llvm_pr", [this](std::string_view between) { out_.keep(between); },
            [this](std::size_t start) { return read_line(start); });
        place_clang_counters(parts_, text_, out_);
        return std::move(out_);
    }

private:
    /// Takes the line apart, the start of a section with what is in it; returns where the text goes
    /// on.
    std::size_t read_line(std::size_t start)
    {
        const AsmLine line = line_at(text_, start);
        const std::size_t next = start + line.whole.size();
        const std::string_view section = line.word == ".section" ? name_at(line.rest, 0) : "";
        if (is_one_of(section, {"__llvm_prf_cnts", "__llvm_prf_data"})) {
            return read_section(next);
        }
        if (section == "__llvm_prf_names") {
            read_names(next);
            out_.keep(text_.substr(start, next - start));
        } else if (line.is_string() || is_one_of(line.word, {".file", ".ident"})) {
            out_.keep(text_.substr(start, next - start));
        } else if (!is_own_attribute(line)) {
            rename(line);
        }
        return next;
    }

    static bool is_own_attribute(const AsmLine& line)
    {
        const Owner owner = read_name(name_at(line.rest, 0)).owner;
        return line.is_attribute() && (owner == Owner::counters || owner == Owner::table);
    }

    /// Counters and tables up to the first line that is of something else.
    std::size_t read_section(std::size_t at)
    {
        std::uint32_t alignment = 1;
        ClangCounters* counters = nullptr;
        Owner owner = Owner::other;
        while (at < text_.size()) {
            const AsmLine line = line_at(text_, at);
            if (line.word == ".p2align") {
                alignment = 1U << std::min<std::uint64_t>(clang_number(line.rest), 31);
            } else if (line.is_label()) {
                const Name name = read_name(line.word.substr(0, line.word.size() - 1));
                owner = name.owner;
                counters = &definition(line, name);
                counters->alignment = std::max(alignment, counters->alignment);
            } else if (line.is_value() || line.is_padding()) {
                read_data(line, owner, counters);
            } else if (!line.is_blank() && !is_own_attribute(line)) {
                break;
            }
            at += line.whole.size();
        }
        return at;
    }

    ClangCounters& definition(const AsmLine& line, const Name& name)
    {
        if (name.owner != Owner::counters && name.owner != Owner::table) {
            refuse(line.whole);
        }
        const auto [found, is_new] = parts_.index.emplace(name.function, parts_.counters.size());
        if (is_new) {
            parts_.counters.emplace_back().function = name.function;
        }
        return parts_.counters[found->second];
    }

    static void read_data(const AsmLine& line, Owner owner, ClangCounters* counters)
    {
        if (owner == Owner::table) {
            counters->table.emplace_back(line.word, line.rest);
        } else if (owner == Owner::counters && line.is_padding()) {
            const std::uint64_t bytes = clang_number(line.rest);
            if (bytes > MAX_ARRAY_BYTES - counters->size) {
                refuse(line.whole);
            }
            counters->size += static_cast<std::uint32_t>(bytes);
        } else {
            refuse(line.whole);
        }
    }

    void read_names(std::size_t at)
    {
        for (AsmLine line = line_at(text_, at); at < text_.size(); line = line_at(text_, at)) {
            if (line.is_string()) {
                parts_.names += string_bytes(line.rest);
            } else if (!line.is_label() && line.word != ".p2align" && !line.is_attribute()) {
                break;
            }
            at += line.whole.size();
        }
    }

    /// An instruction or data that names counters: each name becomes a place in the array.
    void rename(const AsmLine& line)
    {
        const bool can_hold_places = line.word[0] != '.' || line.is_value();
        const std::string_view whole = line.whole;
        std::size_t done = 0;
        for (std::size_t at = 0; at < whole.size(); ++at) {
            const std::string_view text = name_at(whole, at);
            if (text.empty() || text[0] == '$') {
                continue; // "$" marks a number
            }
            const Name name = read_name(text);
            if (name.owner == Owner::counters && can_hold_places) {
                check_use(line, at, text.size());
                out_.pieces.push_back({whole.substr(done, at - done), 0});
                parts_.references.emplace_back(out_.pieces.size() - 1, name.function);
                done = at + text.size();
            } else if (name.owner != Owner::other) {
                refuse(whole);
            }
            at += text.size() - 1;
        }
        out_.keep(whole.substr(done));
    }

    /// A slot of the table of addresses has one symbol: "name+24" there is another address.
    static void check_use(const AsmLine& line, std::size_t at, std::size_t size)
    {
        const std::string_view after = line.whole.substr(at + size);
        std::string_view before = line.whole.substr(0, at); // ends in ":got:" or "%got("
        before.remove_suffix(before.empty() ? 0 : 1);
        before = before.substr(before.find_last_of(":% \t") + 1); // npos + 1 is 0
        if ((begins_with(after, "@GOT") && !begins_with(after, "@GOTOFF")) ||
            begins_with(after, "@got") || begins_with(after, "(GOT") ||
            begins_with(before, "got")) {
            refuse(line.whole);
        }
    }

    std::string_view text_;
    CounterText out_;
    ClangParts parts_;
};

} // namespace

CounterText read_clang_text(std::string_view text)
{
    return Reader(text).read();
}
