// Fields are views into the text: a test suite leaves thousands of dumps, and copies would be most
// of the work. Nothing in a number is taken on trust: files are cut, mixed up or written by others.
#include "commonfunc/text_lines.h"

#include "commonfunc/text.h"

#include <cstddef>

namespace
{

/// A field as it may be shown to the user.
std::string shown(std::string_view field)
{
    std::string text(field.substr(0, 40));
    for (char& c : text) {
        c = is_control(c) ? '?' : c;
    }
    return "'" + text + "'";
}

} // namespace

bool TextLines::next()
{
    if (rest_.empty()) {
        return false;
    }
    ++line_number_;
    const std::size_t end = rest_.find('\n');
    if (end == rest_.npos) {
        fail("the file is cut here");
    }
    line_ = rest_.substr(0, end);
    rest_.remove_prefix(end + 1);
    return true;
}

std::string_view TextLines::word()
{
    return split_off(line_, ' ');
}

std::uint64_t TextLines::number(const char* what, std::uint64_t largest)
{
    return number_of(word(), what, largest);
}

std::uint64_t TextLines::number_of(std::string_view digits, const char* what,
                                   std::uint64_t largest) const
{
    std::uint64_t value = 0;
    bool good = !digits.empty();
    for (const char c : digits) {
        const auto digit = static_cast<unsigned char>(c - '0');
        good = good && digit <= 9 && digit <= largest && value <= (largest - digit) / 10;
        value = value * 10 + digit;
    }
    if (!good) {
        fail(std::string(what) + " " + shown(digits) + " is no number from 0 to " +
             std::to_string(largest));
    }
    return value;
}

std::string_view split_off(std::string_view& text, char separator)
{
    const std::size_t end = text.find(separator);
    const std::string_view part = text.substr(0, end);
    text.remove_prefix(end == text.npos ? text.size() : end + 1);
    return part;
}
