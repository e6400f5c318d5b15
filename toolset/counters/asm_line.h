// Lines and names of assembly text, for every machine.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

/// A line of the text as the assembler sees it: a label, or a directive or instruction.
struct AsmLine {
    std::string_view whole; ///< with its line end
    std::string_view word;  ///< the first one; a label with its colon
    std::string_view rest;  ///< what follows it

    /// True for a label.
    bool is_label() const { return !word.empty() && word.back() == ':'; }

    /// True for a comment of its own, or nothing.
    bool is_blank() const;

    /// True for a directive of numbers and addresses.
    bool is_value() const;

    /// True for a directive of zeros.
    bool is_padding() const;

    /// True for a directive of characters.
    bool is_string() const;

    /// True for a directive that says something of one symbol.
    bool is_attribute() const;
};

/// The line that begins there.
AsmLine line_at(std::string_view text, std::size_t start);

/// The name that begins there, with its quotes when it has them; empty when there is none.
std::string_view name_at(std::string_view text, std::size_t at);

/// Walks over a text of which only the lines with one of two words matter: calls `read_line` with
/// the start of each, which returns where the text goes on, and `keep` with what lies between.
template <typename Keep, typename ReadLine>
void walk_lines(std::string_view text, std::string_view word, std::string_view other, Keep keep,
                ReadLine read_line)
{
    std::size_t done = 0;
    std::size_t next = std::min(text.find(word), text.size());
    std::size_t next_other = std::min(text.find(other), text.size());
    while (std::min(next, next_other) < text.size()) {
        const std::size_t start = text.rfind('\n', std::min(next, next_other)) + 1; // npos + 1 is 0
        keep(text.substr(done, start - done));
        done = read_line(start);
        next = next < done ? std::min(text.find(word, done), text.size()) : next;
        next_other = next_other < done ? std::min(text.find(other, done), text.size()) : next_other;
    }
    keep(text.substr(done));
}

/// Throws `NotInstrumentable` with a part of the text.
[[noreturn]] void refuse(std::string_view what);
