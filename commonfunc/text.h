// Small pure operations on text, shared by every room.
#pragma once

#include <algorithm>
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <map>
#include <string>
#include <string_view>
#include <vector>

/// The integer that `atoi` would give: leading digits with sign, 0 for text that is no number.
/// Out-of-range text is defined here (the value of `strtol`, cut to int), unlike `atoi`.
int to_int(const char* text);

/// Comparison of whole texts without regard to the case of ASCII letters.
bool equals_nocase(std::string_view a, std::string_view b);

/// True when the text starts with `start`.
constexpr bool begins_with(std::string_view text, std::string_view start)
{
    return text.substr(0, start.size()) == start;
}

/// True when the text ends with `end`.
constexpr bool ends_with(std::string_view text, std::string_view end)
{
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

/// True when the part stands anywhere in the text.
constexpr bool contains(std::string_view text, std::string_view part)
{
    return text.find(part) != text.npos;
}

/// True for a byte that would break a line or move what a terminal shows.
constexpr bool is_control(char c)
{
    return static_cast<unsigned char>(c) < 32 || c == 127;
}

/// True when the text is one of these.
inline bool is_one_of(std::string_view text, std::initializer_list<std::string_view> list)
{
    return std::find(list.begin(), list.end(), text) != list.end();
}

/// True when the path names a project file, that is when it holds ".prj" anywhere, also in a
/// directory name, in any case.
bool names_project_file(const std::string& path);

/// The text with every two percent signs in a row, counted from the left, made one: what a
/// formatting call makes of it when the text itself is the format. Other percent sequences have
/// no defined result there and stay as they are.
std::string squeeze_percent_pairs(const std::string& text);

/// The first 200 bytes of a text, enough to find a command in the build log.
std::string beginning_of(const std::string& text);

/// FNV-1a of 64 bits over the text, after what `hash` covers already; by default nothing.
constexpr std::uint64_t fnv1a(std::string_view text, std::uint64_t hash = 0xCBF29CE484222325U)
{
    for (const char c : text) {
        hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3U;
    }
    return hash;
}

/// The number as 16 hexadecimal digits, for file names and coverage symbols.
std::string hex_digits(std::uint64_t number);

/// Copies at most `size` - 1 characters, fills up with NUL, and always puts a NUL at position
/// `size` - 1. Does nothing when a pointer is null or `size` is not positive.
void QMRStrcpy(char* dst, const char* src, int size);

/// `vsnprintf` whose result says whether the whole text fits into `size` bytes with its NUL.
bool format_list(char* out, std::size_t size, const char* format, va_list args)
    __attribute__((format(printf, 3, 0)));

/// Formats into the array, cut to its size - 1 bytes and always NUL-terminated; true when the
/// whole text fits. A path or command that does not fit must not be used.
template <std::size_t N>
__attribute__((format(printf, 2, 3))) bool format_bounded(char (&out)[N], const char* format, ...)
{
    va_list args;
    va_start(args, format);
    const bool fits = format_list(out, N, format, args);
    va_end(args);
    return fits;
}

/// Copies `text` into the array, cut to its size - 1; true when the whole text fits.
template <std::size_t N> bool copy_bounded(char (&out)[N], const std::string& text)
{
    QMRStrcpy(out, text.c_str(), static_cast<int>(N));
    return text.size() < N;
}

/// Splits the text at every separator and appends the pieces, empty ones included, to `out`. An
/// empty or null text, and a NUL separator, give one piece: what stands before the stop.
void strsplit_v(const char* text, char sep, std::vector<std::string>& out);

/// Splits the text at `outer` into pieces and each piece at its first `inner` into key and value,
/// stored in `out`, a later key replacing an earlier one. Returns 0 at the first piece without
/// `inner` (pairs stored before it stay), else 1.
int strsplit_m(const char* text, char outer, char inner, std::map<std::string, std::string>& out);
