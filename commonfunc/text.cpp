// Pure text operations: no state, no output, no locale (ASCII letters only are case-folded).
#include "commonfunc/text.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace
{

char lower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool are_equal(char a, char b)
{
    return lower(a) == lower(b);
}

} // namespace

int to_int(const char* text)
{
    return static_cast<int>(std::strtol(text, nullptr, 10));
}

bool equals_nocase(std::string_view a, std::string_view b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), are_equal);
}

bool names_project_file(const std::string& path)
{
    constexpr std::string_view MARK = ".prj";
    return std::search(path.begin(), path.end(), MARK.begin(), MARK.end(), are_equal) != path.end();
}

std::string squeeze_percent_pairs(const std::string& text)
{
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        out += text[i];
        if (text[i] == '%' && i + 1 < text.size() && text[i + 1] == '%') {
            ++i;
        }
    }
    return out;
}

std::string beginning_of(const std::string& text)
{
    return text.size() <= 200 ? text : text.substr(0, 200) + "...";
}

std::string hex_digits(std::uint64_t number)
{
    char digits[17];
    format_bounded(digits, "%016llx", static_cast<unsigned long long>(number));
    return digits;
}

void QMRStrcpy(char* dst, const char* src, int size)
{
    if (dst == nullptr || src == nullptr || size <= 0) {
        return;
    }
    const auto room = static_cast<std::size_t>(size) - 1;
    const std::size_t length = ::strnlen(src, room);
    std::memcpy(dst, src, length);
    std::memset(dst + length, 0, room - length + 1);
}

bool format_list(char* out, std::size_t size, const char* format, va_list args)
{
    const int length = std::vsnprintf(out, size, format, args);
    return length >= 0 && static_cast<std::size_t>(length) < size;
}

void strsplit_v(const char* text, char sep, std::vector<std::string>& out)
{
    std::string piece;
    for (const char* p = text; p != nullptr && *p != '\0' && sep != '\0'; ++p) {
        if (*p == sep) {
            out.push_back(piece);
            piece.clear();
        } else {
            piece += *p;
        }
    }
    out.push_back(piece);
}

int strsplit_m(const char* text, char outer, char inner, std::map<std::string, std::string>& out)
{
    std::vector<std::string> pieces;
    strsplit_v(text, outer, pieces);
    for (const std::string& piece : pieces) {
        const std::size_t at = piece.find(inner);
        if (at == std::string::npos) {
            return 0;
        }
        out[piece.substr(0, at)] = piece.substr(at + 1);
    }
    return 1;
}
