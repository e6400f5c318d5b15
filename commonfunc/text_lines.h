// Texts of lines and blank-separated fields, as the runtime and the compiler driver write them.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

/// A text that does not keep to its format: the line, counted from 1, and what is wrong there.
class FormatError : public std::runtime_error
{
public:
    FormatError(int at, const std::string& what) : std::runtime_error(what), line(at) {}

    const int line;
};

/// Goes through a text line by line and through a line field by field.
class TextLines
{
public:
    explicit TextLines(std::string_view text) : rest_(text) {}

    /// Goes to the next line; false at the end of the text. Throws `FormatError` for a line without
    /// a line end: the text was cut there.
    bool next();

    /// The next field of the line, empty at its end.
    std::string_view word();

    /// What is left of the line, without the blank before it.
    std::string_view rest_of_line() const { return line_; }

    /// What is left of the text after the line.
    std::string_view rest_of_text() const { return rest_; }

    /// The next field as a number of at most `largest`; throws `FormatError`, which calls it
    /// `what`, for anything but decimal digits and for a larger one.
    std::uint64_t number(const char* what, std::uint64_t largest);

    /// The same of a text that is in this line.
    std::uint64_t number_of(std::string_view digits, const char* what, std::uint64_t largest) const;

    /// Throws `FormatError` with the number of this line.
    [[noreturn]] void fail(const std::string& what) const { throw FormatError(line_number_, what); }

private:
    std::string_view rest_;
    std::string_view line_;
    int line_number_ = 0;
};

/// Splits off the text before the first `separator`, which goes too; all of it when there is none.
std::string_view split_off(std::string_view& text, char separator);
