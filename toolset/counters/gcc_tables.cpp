// The head of the tables, `.LPBX0`, holds version, stamp, checksum, file name and how each kind
// joins two runs; `.LPBX1` is the list of the functions' tables in the order of data files.
#include "toolset/counters/gcc_tables.h"

#include "commonfunc/text.h"
#include "contract/record.h"
#include "toolset/counters/asm_line.h"

#include <algorithm>
#include <exception>
#include <string>

namespace
{

using Texts = std::vector<std::string_view>;

constexpr std::string_view COUNTER = "__gcov";
constexpr std::string_view FUNCTION_TABLE = "__gcov_.";
constexpr std::string_view TABLE = "LPBX";

/// Reads the tables, then places the counters.
class Tables
{
public:
    Tables(GccParts& parts, CounterText& out) : parts_(parts), out_(out) {}

    void place()
    {
        read_tables();
        place_counters();
    }

private:
    /// The table of the label whose number after "LPBX" this is; null when there is none.
    const Texts* table(char number) const
    {
        for (const auto& [name, words] : parts_.tables) {
            if (name.size() == TABLE.size() + 2 && name.back() == number && is_table(name)) {
                return &words;
            }
        }
        return nullptr;
    }

    void read_tables()
    {
        const Texts* const head = table('0');
        const Texts* const list = table('1');
        if (head == nullptr || list == nullptr) {
            if (!parts_.definitions.empty()) {
                refuse(parts_.definitions.begin()->first);
            }
            return;
        }
        read_head(*head);
        for (const std::string_view name : *list) {
            const auto found = parts_.tables.find(name);
            if (found == parts_.tables.end() || !begins_with(name, FUNCTION_TABLE)) {
                refuse(name);
            }
            read_function(name.substr(FUNCTION_TABLE.size()), found->second);
        }
    }

    /// version, next, stamp, checksum (since GCC 12), file name, a function per kind or 0, number
    /// of functions, list
    void read_head(const Texts& words)
    {
        const auto name = std::find_if(words.begin(), words.end(), [](std::string_view word) {
            return word.find_first_not_of("-0123456789") != word.npos;
        });
        const auto before = name - words.begin();
        if ((before != 3 && before != 4) || words.end() - name < 3) {
            refuse("table of the file");
        }
        out_.record.version = number_of(words[0]);
        out_.record.has_checksum = before == 4;
        for (auto join = name + 1; join < words.end() - 2; ++join) {
            joins_by_or_.push_back(*join == "__gcov_merge_ior");
            if (!is_one_of(*join, {"0", "__gcov_merge_add", "__gcov_merge_ior"})) {
                refuse(*join);
            }
        }
    }

    /// file, identifier, checksums of lines and flow, and per kind number and place of the
    /// counters; a place that is null may be part of the padding
    void read_function(std::string_view name, const Texts& words)
    {
        if (words.size() < 4) {
            refuse(name);
        }
        RecordedFunction& function = out_.record.functions.emplace_back();
        function.name = name;
        function.ident = number_of(words[1]);
        function.lineno_checksum = number_of(words[2]);
        function.cfg_checksum = number_of(words[3]);
        for (std::size_t i = 4; i < words.size(); ++i) {
            const std::uint32_t number = number_of(words[i]);
            const bool has_place = i + 1 < words.size() && is_counter(words[i + 1]);
            if (has_place) {
                const std::string_view place = words[++i];
                const std::uint32_t kind = number_of(
                    place.substr(COUNTER.size(), place.find('.', COUNTER.size()) - COUNTER.size()));
                function.counters.push_back({kind, number, 0});
                places_.push_back(
                    {out_.record.functions.size() - 1, function.counters.size() - 1, place});
            } else if (number != 0) {
                refuse(name);
            }
        }
    }

    bool joins_by_or(std::uint32_t kind) const
    {
        return kind < joins_by_or_.size() && joins_by_or_[kind];
    }

    /// Gives every counter its offset: those that join by "or" stand at the end.
    void place_counters()
    {
        const std::uint32_t end_of_sums = place_kinds(false, 0);
        out_.record.array_bytes = place_kinds(true, end_of_sums);
        out_.record.or_bytes = out_.record.array_bytes - end_of_sums;
        for (const auto& [piece, name] : parts_.references) {
            const auto found = parts_.definitions.find(name);
            if (found == parts_.definitions.end() || found->second.offset == TextPiece::NONE) {
                refuse(name);
            }
            out_.pieces[piece].offset = found->second.offset;
        }
    }

    /// Returns where the array goes on after the counters that join this way.
    std::uint32_t place_kinds(bool by_or, std::uint32_t end)
    {
        for (const Place& place : places_) {
            CounterRun& run = out_.record.functions[place.function].counters[place.run];
            if (joins_by_or(run.kind) != by_or) {
                continue;
            }
            const auto found = parts_.definitions.find(place.name);
            const std::uint64_t bytes = std::uint64_t{8} * run.number;
            if (found == parts_.definitions.end() || found->second.size < bytes ||
                found->second.alignment == 0 || found->second.alignment > ARRAY_ALIGNMENT) {
                refuse(place.name);
            }
            const std::uint32_t alignment = std::max(found->second.alignment, 8U);
            run.offset = (end + alignment - 1) / alignment * alignment;
            found->second.offset = run.offset;
            if (bytes > MAX_ARRAY_BYTES || run.offset > MAX_ARRAY_BYTES - bytes) {
                refuse(place.name);
            }
            end = run.offset + 8 * run.number; // what follows may be a guard of a sanitizer
        }
        return end;
    }

    /// Counters in a function's table.
    struct Place {
        std::size_t function;
        std::size_t run;
        std::string_view name;
    };

    GccParts& parts_;
    CounterText& out_;
    std::vector<bool> joins_by_or_; ///< by kind
    std::vector<Place> places_;
};

} // namespace

bool is_counter(std::string_view name)
{
    const std::size_t end = name.find_first_not_of("0123456789", COUNTER.size());
    return begins_with(name, COUNTER) && end != name.npos && end > COUNTER.size() &&
           name[end] == '.';
}

bool is_table(std::string_view name)
{
    return begins_with(name, FUNCTION_TABLE) ||
           (name.size() > TABLE.size() + 1 && name.substr(1, TABLE.size()) == TABLE &&
            (name[0] == '.' || name[0] == '$'));
}

std::uint32_t number_of(std::string_view digits)
{
    try {
        return static_cast<std::uint32_t>(std::stoll(std::string(digits)));
    } catch (const std::exception&) {
        refuse(digits);
    }
}

void place_counters(GccParts& parts, CounterText& out)
{
    Tables(parts, out).place();
}
