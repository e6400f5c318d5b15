// Names with characters that assemblers do not take for parts of a name are in quotes.
#include "toolset/counters/asm_line.h"

#include "commonfunc/text.h"
#include "toolset/counters/counter_text.h"

#include <algorithm>
#include <string>

namespace
{

constexpr std::string_view BLANKS = " \t";

bool is_name_character(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
           c == '.' || c == '$' || static_cast<unsigned char>(c) >= 0x80;
}

void skip_blanks(std::string_view& text)
{
    text.remove_prefix(std::min(text.find_first_not_of(BLANKS), text.size()));
}

} // namespace

bool AsmLine::is_blank() const
{
    return word.empty() || word[0] == '#' || word[0] == '@' || begins_with(word, "//");
}

bool AsmLine::is_value() const
{
    return is_one_of(word, {".long", ".quad", ".word", ".xword", ".dword", ".4byte", ".8byte",
                            ".2byte", ".hword", ".short", ".half", ".value", ".llong", ".byte"});
}

bool AsmLine::is_padding() const
{
    return is_one_of(word, {".zero", ".space", ".skip"});
}

bool AsmLine::is_string() const
{
    return is_one_of(word, {".ascii", ".asciz", ".string"});
}

bool AsmLine::is_attribute() const
{
    return is_one_of(word,
                     {".type", ".size", ".hidden", ".weak", ".globl", ".local", ".addrsig_sym"});
}

AsmLine line_at(std::string_view text, std::size_t start)
{
    const std::size_t end = std::min(text.find('\n', start), text.size() - 1) + 1;
    AsmLine line;
    line.whole = text.substr(start, end - start);
    std::string_view rest = line.whole.substr(0, line.whole.find('\n'));
    skip_blanks(rest);
    const std::size_t quoted = begins_with(rest, "\"") ? name_at(rest, 0).size() : 0;
    line.word = rest.substr(0, rest.find_first_of(BLANKS, quoted));
    rest.remove_prefix(line.word.size());
    skip_blanks(rest);
    line.rest = rest;
    return line;
}

std::string_view name_at(std::string_view text, std::size_t at)
{
    std::size_t end = at;
    if (at < text.size() && text[at] == '"') {
        end = std::min(text.find('"', at + 1), text.size() - 1) + 1;
    } else {
        while (end < text.size() && is_name_character(text[end])) {
            ++end;
        }
    }
    return text.substr(at, end - at);
}

void refuse(std::string_view what)
{
    throw NotInstrumentable("the compiler's counters are not understood: '" +
                            std::string(what.substr(0, what.find('\n')).substr(0, 80)) + "'");
}
