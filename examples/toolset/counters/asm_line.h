// Lines and names of assembly text, for every machine.
#pragma once

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

/// Throws `NotInstrumentable` with a part of the text.
[[noreturn]] void refuse(std::string_view what);
