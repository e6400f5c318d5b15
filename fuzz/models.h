// Models that two targets use: short, slow, and written from what is promised, not from the code.
#pragma once

#include "fuzz/fuzz.h"

#include <algorithm>

namespace fuzz
{

/// The positions that a search in an INI text gives: section, key and value, start and end each.
struct IniPlaces {
    long section[2] = {-1, -1}, key[2] = {-1, -1}, value[2] = {-1, -1};
};

/// The search, over whole lines: the names of section and key in the text are beginnings of those
/// that are wanted; white space after a head belongs to it; the last head that answers counts.
inline IniPlaces ini_search(const std::string& wanted, const std::string& key,
                            const std::string& text)
{
    const auto pos = [&](std::size_t found) { return std::min(found, text.size()); };
    IniPlaces found;
    for (std::size_t at = 0; at < text.size();) {
        if (text[at] != '[' || (at > 0 && text[at - 1] != '\n' && text[at - 1] != '\r')) {
            ++at;
            continue;
        }
        const std::size_t close = pos(text.find(']', at));
        const std::string name = text.substr(at + 1, close - at - 1);
        const std::size_t head = at + 1;
        at = close;
        if (wanted.substr(0, name.size()) != name) {
            continue;
        }
        at = pos(text.find_first_not_of(" \t\r\n", std::min(close + 1, text.size())));
        found.section[0] = static_cast<long>(head);
        found.section[1] = static_cast<long>(at);
        while (at < text.size() && text[at] != '[') {
            const std::size_t end = pos(text.find_first_of("\r\n", at));
            const std::string line = text.substr(at, end - at);
            const std::string left = line.substr(0, line.find('='));
            if (line[0] != ';' && left != line && !left.empty() && key.find(left) == 0) {
                const auto start = static_cast<long>(at),
                           equals = start + static_cast<long>(left.size());
                return {{found.section[0], found.section[1]},
                        {start, equals - 1},
                        {equals + 1, static_cast<long>(end)}};
            }
            at = std::min(end + 1, text.size());
        }
    }
    return found;
}

/// An INI text with a value set.
inline std::string ini_with(const std::string& text, const std::string& section,
                            const std::string& key, const std::string& value)
{
    const IniPlaces found = ini_search(section, key, text);
    const std::string line = key + "=" + value + "\n";
    const auto part = [&](long from, long to) {
        return text.substr(static_cast<std::size_t>(from), static_cast<std::size_t>(to - from));
    };
    const auto size = static_cast<long>(text.size());
    if (found.section[0] < 0) {
        return (text.empty() ? "" : text + "\n") + "[" + section + "]\n" + line;
    }
    if (found.value[0] >= 0) {
        return part(0, found.value[0]) + value + part(found.value[1], size);
    }
    std::string after = part(found.section[1], size); // was a format once
    for (std::size_t at = 0; (at = after.find("%%", at)) != std::string::npos; ++at) {
        after.erase(at, 1);
    }
    return part(0, found.section[1]) + line + after;
}

/// The search in objects: after a mismatch it goes on after the mismatching byte. Attempts begin
/// before `limit`; a NUL stands after the text. npos when there is none.
inline std::size_t quirky_find(const std::string& text, const std::string& pattern,
                               std::size_t from, std::size_t limit)
{
    for (std::size_t at = from; at < limit;) {
        std::size_t i = 0;
        while (i < pattern.size() && text.c_str()[at + i] == pattern[i]) {
            ++i;
        }
        if (i == pattern.size()) {
            return at;
        }
        at += i + 1;
    }
    return std::string::npos;
}

/// The pieces between separators; one more than there are separators.
inline Texts pieces_of(const std::string& text, char separator)
{
    Texts pieces(1);
    for (const char c : text) {
        if (c == separator) {
            pieces.emplace_back();
        } else {
            pieces.back() += c;
        }
    }
    return pieces;
}

/// A name as part of an identifier, up to its first NUL.
inline std::string identifier_of(const std::string& name)
{
    std::string out;
    for (const char c : name) {
        const int byte = c; // signed, as the names on disk are
        const bool stands =
            (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
        out += stands || byte < 0 ? std::string(1, static_cast<char>(stands ? byte : byte + 48))
                                  : std::to_string(byte);
    }
    return out.c_str();
}

} // namespace fuzz
