// Reading goes file -> text -> `parse_file` -> value; writing goes text -> `with_profile_value`
// -> file. Oddities of the format that existing files rely on: names match by prefix, the white
// space after a section head belongs to the head, a new key becomes the section's first line, the
// byte 0xFF ends the text, and inserting a key squeezes "%%" after it.
#include "commonfunc/ini_profile.h"

#include "commonfunc/file_io.h"
#include "commonfunc/message.h"
#include "commonfunc/text.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

namespace
{

/// What most files fit into: thousands of them are read for one archive.
constexpr std::size_t SMALL_FILE_SIZE = 4096;

/// Positions that a search found, -1 where it found nothing.
struct Positions {
    int section_start = -1, section_end = -1;
    int key_start = -1, key_end = -1;
    int value_start = -1, value_end = -1;
};

struct IniText {
    std::string text; ///< up to the first 0xFF
    bool opened = false;
    bool too_large = false;    ///< the file holds more than one buffer does
    bool rest_dropped = false; ///< something stands after a 0xFF or NUL
    int error = 0;             ///< why an existing file could not be read; 0 when it was
};

/// True when the file exists but its content could not be read: a text that is written now would
/// lack that content.
bool is_unknown(const IniText& loaded)
{
    return loaded.error == EMFILE || loaded.error == ENFILE || loaded.error == EIO ||
           loaded.error == ENOMEM;
}

void tell_if_unread(const IniText& loaded, const char* path)
{
    if (loaded.error != 0) {
        warn("'%s' cannot be read: %s; the step goes on without it, mend that and build again",
             path, std::strerror(loaded.error));
    }
}

IniText load_text(const char* path)
{
    IniText result;
    const File file = open_file(path, "re");
    if (!file) {
        const bool is_absent = errno == ENOENT || errno == ENOTDIR || errno == ENAMETOOLONG;
        result.error = is_absent ? 0 : errno;
        tell_if_unread(result, path);
        return result;
    }
    result.opened = true;
    std::size_t length = 0;
    for (const std::size_t size : {SMALL_FILE_SIZE, std::size_t{INI_BUFFER_SIZE}}) {
        result.text.resize(size);
        length += std::fread(&result.text[length], 1, size - length, file.get());
        if (length < size) {
            break;
        }
    }
    result.error = std::ferror(file.get()) != 0 ? errno : 0;
    tell_if_unread(result, path);
    result.too_large = length == INI_BUFFER_SIZE;
    length -= result.too_large ? 1 : 0;
    result.text.resize(length);
    // Kept: a genuine 0xFF ends the text like the end-of-file mark does.
    result.text.resize(std::min(length, result.text.find('\xFF')));
    result.rest_dropped = std::strlen(result.text.c_str()) < length;
    return result;
}

/// True when the `length` bytes at `name` are the beginning of `wanted`.
/// Kept: existing files are written in reliance on names that match by prefix.
bool is_prefix_of(const char* name, int length, const char* wanted)
{
    return std::strncmp(wanted, name, static_cast<std::size_t>(length)) == 0;
}

bool is_white(char c)
{
    return c == ' ' || c == '\t' || newline(static_cast<unsigned char>(c));
}

int line_end(const char* text, int at)
{
    return at + static_cast<int>(std::strcspn(text + at, "\r\n"));
}

/// Looks at one line; sets the key and value positions when it answers the key.
bool line_answers(const char* text, int start, int end, const char* key, Positions& found)
{
    if (text[start] == ';') {
        return false;
    }
    const void* equals = std::memchr(text + start, '=', static_cast<std::size_t>(end - start));
    if (equals == nullptr) {
        return false;
    }
    const int at = static_cast<int>(static_cast<const char*>(equals) - text);
    if (at == start || !is_prefix_of(text + start, at - start, key)) {
        return false;
    }
    found.key_start = start;
    found.key_end = at - 1;
    found.value_start = at + 1;
    found.value_end = end;
    return true;
}

/// Walks the lines of a section from `at`; leaves `at` after its last line.
bool section_answers(const char* text, int& at, const char* key, Positions& found)
{
    while (!end_of_string(static_cast<unsigned char>(text[at])) &&
           !left_barce(static_cast<unsigned char>(text[at]))) {
        const int end = line_end(text, at);
        if (line_answers(text, at, end, key, found)) {
            return true;
        }
        at = text[end] == '\0' ? end : end + 1;
    }
    return false;
}

Positions search(const char* section, const char* key, const char* text)
{
    Positions found;
    int at = 0;
    while (!end_of_string(static_cast<unsigned char>(text[at]))) {
        const bool at_line_start = at == 0 || newline(static_cast<unsigned char>(text[at - 1]));
        if (!at_line_start || !left_barce(static_cast<unsigned char>(text[at]))) {
            ++at;
            continue;
        }
        const int name = at + 1;
        at = name + static_cast<int>(std::strcspn(text + name, "]"));
        if (!is_prefix_of(text + name, at - name, section)) {
            continue;
        }
        at += isright_brace(static_cast<unsigned char>(text[at]));
        while (is_white(text[at])) {
            ++at;
        }
        // Kept: the last head that answers the section stays recorded, and gets a new key.
        found.section_start = name;
        found.section_end = at;
        if (section_answers(text, at, key, found)) {
            break;
        }
    }
    return found;
}

} // namespace

int newline(unsigned char c)
{
    return c == '\n' || c == '\r' ? 1 : 0;
}
int end_of_string(unsigned char c)
{
    return c == '\0' ? 1 : 0;
}
int left_barce(unsigned char c)
{
    return c == '[' ? 1 : 0;
}
int isright_brace(unsigned char c)
{
    return c == ']' ? 1 : 0;
}

int load_ini_file(const char* path, char* buffer, int* length)
{
    const IniText loaded = load_text(path);
    *length = static_cast<int>(loaded.text.size());
    if (loaded.opened) {
        std::memcpy(buffer, loaded.text.c_str(), loaded.text.size() + 1);
    }
    return loaded.opened ? 1 : 0;
}

int parse_file(const char* section, const char* key, const char* text, int* section_start,
               int* section_end, int* key_start, int* key_end, int* value_start, int* value_end)
{
    const Positions found = search(section, key, text);
    *section_start = found.section_start;
    *section_end = found.section_end;
    *key_start = found.key_start;
    *key_end = found.key_end;
    *value_start = found.value_start;
    *value_end = found.value_end;
    return found.value_start >= 0 ? 1 : 0;
}

std::string profile_text(const char* path)
{
    return load_text(path).text;
}

bool profile_value(const std::string& text, const char* section, const char* key, char* out,
                   int size)
{
    const Positions found = search(section, key, text.c_str());
    if (found.value_start >= 0) {
        const auto start = static_cast<std::size_t>(found.value_start);
        const auto end = static_cast<std::size_t>(found.value_end);
        QMRStrcpy(out, text.substr(start, end - start).c_str(), size);
    }
    return found.value_start >= 0;
}

int read_profile_string(const char* section, const char* key, char* out, int size,
                        const char* default_value, const char* path)
{
    if (profile_value(profile_text(path), section, key, out, size)) {
        return 1;
    }
    if (default_value != nullptr && size > 0) {
        // Kept: a default that fills the buffer gets no NUL.
        std::strncpy(out, default_value, static_cast<std::size_t>(size));
    }
    return 0;
}

int QMRGetPrivateProfileString(const char* section, const char* key, char* out, int size,
                               const char* default_value, const char* path)
{
    return read_profile_string(section, key, out, size, default_value, path);
}

int read_profile_int(const char* section, const char* key, int default_value, const char* path)
{
    char value[32];
    return read_profile_string(section, key, value, sizeof value, nullptr, path) != 0
               ? to_int(value)
               : default_value;
}

int write_profile_string(const char* section, const char* key, const char* value, const char* path)
{
    const IniText loaded = load_text(path);
    const std::string text = with_profile_value(loaded.text.c_str(), section, key, value);
    if (loaded.too_large || text.size() >= INI_BUFFER_SIZE) {
        warn("'%s' is left as it is: key '%s' not set, a profile file holds at most %d bytes", path,
             key, INI_BUFFER_SIZE - 1);
        return 0;
    }
    if (is_unknown(loaded)) {
        return 0;
    }
    if (loaded.rest_dropped) {
        warn("'%s' holds a byte 0xFF or 0x00: what follows it is dropped", path);
    }
    return replace_file(path, text) == Writing::done ? 1 : 0;
}

int write_profile_int(const char* section, const char* key, int value, const char* path)
{
    return write_profile_string(section, key, std::to_string(value).c_str(), path);
}

std::string with_profile_value(const std::string& text, const std::string& section,
                               const std::string& key, const std::string& value)
{
    const Positions found = search(section.c_str(), key.c_str(), text.c_str());
    const std::string line = key + "=" + value + "\n";
    if (found.section_start < 0) {
        return text + (text.empty() ? "" : "\n") + "[" + section + "]\n" + line;
    }
    if (found.value_start >= 0) {
        std::string changed = text;
        return changed.replace(static_cast<std::size_t>(found.value_start),
                               static_cast<std::size_t>(found.value_end - found.value_start),
                               value);
    }
    // Kept: what follows the new line passes through a formatting call as its format.
    const auto first_line = static_cast<std::size_t>(found.section_end);
    return text.substr(0, first_line) + line + squeeze_percent_pairs(text.substr(first_line));
}
