// The text is copied line by line; only probes, and debug information that nobody asked for,
// change.
#include "asm_rewrite.h"

#include "counter_code.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace
{

std::string_view first_word(std::string_view line)
{
    const std::size_t from = std::min(line.find_first_not_of(" \t"), line.size());
    const std::size_t end = std::min(line.find_first_of(" \t", from), line.size());
    return line.substr(from, end - from);
}

/// Says of each line whether it belongs to debug information: line directives, and the data of
/// debug sections. Other directives that happen to stand there (`.ident`) stay.
class DebugFilter
{
public:
    bool drops(std::string_view line)
    {
        const std::string_view word = first_word(line);
        if (word == ".section" || word == ".pushsection") {
            in_debug_ = line.find(".debug_") != line.npos;
            return in_debug_;
        }
        if (word == ".text" || word == ".data" || word == ".bss" || word == ".popsection" ||
            word == ".previous") {
            in_debug_ = false;
        }
        if (word == ".loc" || (word == ".file" && is_numbered(line))) {
            return true;
        }
        return in_debug_ && (word.empty() || word.back() == ':' || is_data(word));
    }

private:
    static bool is_numbered(std::string_view line)
    {
        const std::size_t at = line.find_first_not_of(" \t", line.find(".file") + 5);
        return at != line.npos && std::isdigit(static_cast<unsigned char>(line[at])) != 0;
    }

    static bool is_data(std::string_view word)
    {
        constexpr std::array<std::string_view, 17> DATA = {
            ".byte",  ".value", ".long",    ".quad",    ".2byte", ".4byte",
            ".8byte", ".hword", ".word",    ".xword",   ".short", ".string",
            ".ascii", ".asciz", ".uleb128", ".sleb128", ".align"};
        return std::find(DATA.begin(), DATA.end(), word) != DATA.end() || word == ".p2align";
    }

    bool in_debug_ = false;
};

/// Whether a probe of the compiler's stands at the region's place.
bool is_probe(const Region& region)
{
    return region.probe == Region::Probe::call || region.probe == Region::Probe::tail;
}

/// Code at a text line: before it, or in its place.
struct Increment {
    std::size_t at;
    bool replaces;
    std::string code;
};

std::string count(const AsmText& text, const Region& region, const Rewriting& how,
                  std::size_t index)
{
    const bool at_call = is_probe(region) || region.probe == Region::Probe::after ||
                         region.probe == Region::Probe::entry;
    const std::string code = at_call ? count_at_call(text.machine, how, index)
                                     : count_anywhere(text.machine, how, index);
    return text.intel_syntax ? "\t.att_syntax prefix\n" + code + "\t.intel_syntax noprefix\n"
                             : code;
}

/// In the order of the text. Probes that were not chosen are replaced by nothing.
std::vector<Increment> increments(const AsmText& text, const std::vector<std::size_t>& probes,
                                  const Rewriting& how)
{
    std::vector<Increment> out;
    std::size_t index = 0;
    for (std::size_t i = 0; i < text.regions.size(); ++i) {
        const Region& region = text.regions[i];
        const bool chosen = index < probes.size() && probes[index] == i;
        if (chosen || is_probe(region)) {
            std::string code = chosen ? count(text, region, how, index++) : "";
            code += region.probe == Region::Probe::tail ? "\tret\n" : "";
            out.push_back({region.at, is_probe(region), std::move(code)});
        }
    }
    return out;
}

std::string array_definition(const Rewriting& how, std::size_t probes)
{
    const std::size_t size = how.counters == Counters::bits    ? (probes + 31) / 32 * 4
                             : how.counters == Counters::bytes ? probes
                                                               : probes * 4;
    return "\t.comm\t" + how.array + "," + std::to_string(size) + ",4\n";
}

} // namespace

Counters counters_of(int stub_mode)
{
    switch (stub_mode) {
    case 0:
    case 4:
    case 7:
        return Counters::bits;
    case 2:
    case 6:
    case 9:
        return Counters::bytes;
    default:
        return Counters::words;
    }
}

bool object_defines_array(int stub_mode)
{
    return stub_mode == 5 || (stub_mode >= 7 && stub_mode <= 9);
}

std::vector<std::size_t> choose_probes(const AsmText& text)
{
    std::vector<bool> has_probe(text.functions.size());
    for (const Region& region : text.regions) {
        if (is_probe(region)) {
            has_probe[static_cast<std::size_t>(region.function)] = true;
        }
    }
    std::vector<std::size_t> chosen;
    int counted = -1; ///< the function whose first counter was chosen
    for (std::size_t i = 0; i < text.regions.size(); ++i) {
        const Region& region = text.regions[i];
        const bool has_lines = region.at != 0 && !region.lines.empty();
        const bool is_entry = is_probe(region) && region.function != counted;
        if (region.function >= 0 && has_probe[static_cast<std::size_t>(region.function)] &&
            (has_lines || is_entry)) {
            chosen.push_back(i);
            counted = region.function;
        }
    }
    return chosen;
}

std::string rewrite(const AsmText& text, const std::vector<std::size_t>& probes,
                    const Rewriting& how)
{
    const auto code = increments(text, probes, how);
    auto next = code.begin();
    DebugFilter debug;
    std::string out;
    for (std::size_t i = 0; i < text.text.size(); ++i) {
        const std::string_view line = text.text[i];
        bool drop = how.drop_debug_info && debug.drops(line);
        if (next != code.end() && next->at == i) {
            out += next->code;
            drop = drop || next->replaces;
            ++next;
        }
        if (!drop && first_word(line) != ".addrsig_sym") { // a hint, and it may name the probe
            out.append(line).push_back('\n');
        }
    }
    return out + (how.define_array ? array_definition(how, probes.size()) : "");
}
