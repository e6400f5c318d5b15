// The table of a function, `__profd_FUNCTION`, begins with two 64-bit words: a hash of its name and
// one of its structure. A profile wants the name itself, which the section of names has: those of
// static functions with the file before them ("util.c:help"), while symbols say `util.c_help`.
#include "toolset/counters/clang_tables.h"

#include "commonfunc/text.h"
#include "contract/record.h"
#include "toolset/counters/asm_line.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>

namespace
{

constexpr char NAME_SEPARATOR = '\1';
constexpr std::string_view NOT_IN_SYMBOLS = "-:;<>/\"'"; ///< each becomes "_" there

/// Names by what symbols make of them; an empty one where that is not clear.
using Names = std::unordered_map<std::string, std::string>;

/// Takes a number of 7-bit groups, the lowest first, off the bytes.
std::uint64_t take_number(std::string_view& bytes)
{
    std::uint64_t number = 0;
    for (unsigned shift = 0; shift < 63 && !bytes.empty(); shift += 7) {
        const auto byte = static_cast<unsigned char>(bytes.front());
        bytes.remove_prefix(1);
        number |= (byte & 0x7FULL) << shift;
        if (byte < 0x80) {
            return number;
        }
    }
    refuse("names of functions");
}

void add_name(Names& names, const std::string& name)
{
    std::string symbol = name;
    for (char& c : symbol) {
        c = NOT_IN_SYMBOLS.find(c) == NOT_IN_SYMBOLS.npos ? c : '_';
    }
    const auto [found, is_new] = names.emplace(symbol, name);
    if (!is_new && found->second != name) {
        found->second.clear();
    }
}

/// The section is a list of texts: their size, 0 (the size when compressed), and the names.
Names read_names(std::string_view bytes)
{
    Names names;
    while (!bytes.empty()) {
        const std::uint64_t size = take_number(bytes);
        if (take_number(bytes) != 0 || size > bytes.size()) {
            refuse("names of functions, which are compressed or cut");
        }
        std::string_view list = bytes.substr(0, size);
        bytes.remove_prefix(size);
        while (!list.empty()) {
            const std::string_view name = list.substr(0, list.find(NAME_SEPARATOR));
            list.remove_prefix(std::min(name.size() + 1, list.size()));
            add_name(names, std::string(name));
        }
    }
    return names;
}

/// The first two words of a table. Where the machine has no directive for 64 bits each is written
/// as two halves, in the order of the target.
struct Hashes {
    std::uint64_t of_name = 0;
    std::uint64_t of_structure = 0;
};

bool are_halves(const ClangCounters& counters)
{
    return is_one_of(counters.table[0].first, {".long", ".word", ".4byte"});
}

Hashes hashes_of(const ClangCounters& counters, bool high_first)
{
    std::uint64_t words[4] = {};
    if (counters.table.size() < 4) {
        refuse(counters.function);
    }
    for (std::size_t i = 0; i < 4 && (i < 2 || are_halves(counters)); ++i) {
        words[i] = clang_number(counters.table[i].second);
    }
    if (!are_halves(counters)) {
        return {words[0], words[1]};
    }
    const std::size_t low = high_first ? 1 : 0;
    const auto whole = [&](std::size_t first) {
        return words[first + 1 - low] << 32 | (words[first + low] & UINT32_MAX);
    };
    return {whole(0), whole(2)};
}

/// The order of the halves: functions that the coverage map describes have a record there which is
/// named after the hash of their name.
bool has_high_half_first(const ClangParts& parts, std::string_view text)
{
    for (const ClangCounters& counters : parts.counters) {
        if (counters.table.empty() || !are_halves(counters)) {
            continue;
        }
        for (const bool high_first : {false, true}) {
            char record[32];
            std::snprintf(record, sizeof record, "__covrec_%" PRIX64,
                          hashes_of(counters, high_first).of_name);
            if (text.find(record) != text.npos) {
                return high_first;
            }
        }
    }
    return false;
}

RecordedFunction recorded(const ClangCounters& counters, const Names& names, bool high_first)
{
    const auto name = names.find(std::string(counters.function));
    if (name == names.end() || name->second.empty() || counters.table.empty()) {
        refuse(counters.function);
    }
    if (counters.size == 0 || counters.size % 8 != 0 || counters.alignment > ARRAY_ALIGNMENT) {
        refuse(counters.function);
    }
    RecordedFunction function;
    function.name = name->second;
    function.hash = hashes_of(counters, high_first).of_structure;
    return function;
}

/// The byte of an escape that begins after the backslash, at `at`, which goes to its last
/// character.
char escaped_byte(std::string_view text, std::size_t& at)
{
    const char c = text[at];
    if (c >= '0' && c <= '7') {
        unsigned byte = 0;
        const std::size_t end = std::min(at + 3, text.size());
        for (; at < end && text[at] >= '0' && text[at] <= '7'; ++at) {
            byte = byte * 8 + static_cast<unsigned>(text[at] - '0');
        }
        --at;
        return static_cast<char>(byte);
    }
    constexpr std::string_view LETTERS = "bfnrt";
    const std::size_t letter = LETTERS.find(c);
    return letter == LETTERS.npos ? c : "\b\f\n\r\t"[letter];
}

} // namespace

std::uint64_t clang_number(std::string_view text)
{
    const std::string digits(text.substr(0, text.find_first_of(" \t,#@;|!/")));
    char* end = nullptr;
    const std::uint64_t number =
        digits.find('-') == 0 ? static_cast<std::uint64_t>(std::strtoll(digits.c_str(), &end, 0))
                              : std::strtoull(digits.c_str(), &end, 0);
    if (digits.empty() || *end != '\0') {
        refuse(text);
    }
    return number;
}

std::string string_bytes(std::string_view quoted)
{
    std::string bytes;
    for (std::size_t i = 1; i < quoted.size() && quoted[i] != '"'; ++i) {
        if (quoted[i] == '\\' && i + 1 < quoted.size()) {
            bytes += escaped_byte(quoted, ++i);
        } else {
            bytes += quoted[i];
        }
    }
    return bytes;
}

void place_clang_counters(const ClangParts& parts, std::string_view text, CounterText& out)
{
    const Names names = read_names(parts.names);
    const bool high_first = has_high_half_first(parts, text);
    std::vector<std::uint32_t> offsets;
    std::uint32_t end = 0;
    for (const ClangCounters& counters : parts.counters) {
        RecordedFunction function = recorded(counters, names, high_first);
        const std::uint32_t alignment = std::max(counters.alignment, 8U);
        offsets.push_back((end + alignment - 1) / alignment * alignment);
        function.counters.push_back({0, counters.size / 8, offsets.back()});
        if (offsets.back() > MAX_ARRAY_BYTES - counters.size) {
            refuse(counters.function);
        }
        end = offsets.back() + counters.size;
        out.record.functions.push_back(std::move(function));
    }
    out.record.array_bytes = end;
    for (const auto& [piece, function] : parts.references) {
        const auto found = parts.index.find(function);
        if (found == parts.index.end()) {
            refuse(function);
        }
        out.pieces[piece].offset = offsets[found->second];
    }
}
