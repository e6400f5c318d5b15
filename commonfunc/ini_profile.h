// INI profile files: sections in brackets, lines of key, '=' and value, comments after ';'.
// Every call with a path loads the file anew; a write replaces the whole file.
#pragma once

#include <string>

/// Size in bytes of the buffer that holds a whole file with its NUL.
constexpr int INI_BUFFER_SIZE = 131072;

/// Character classes of the parser; each returns 1 or 0.
int newline(unsigned char c);       ///< line feed or carriage return
int end_of_string(unsigned char c); ///< NUL
int left_barce(unsigned char c);    ///< '['
int isright_brace(unsigned char c); ///< ']'

/// Loads the file into `buffer` (INI_BUFFER_SIZE bytes), at most 131,071 bytes and up to the first
/// byte 0xFF, NUL-terminated. Returns 1 when the file could be opened, and the number of bytes in
/// `length`; else 0, and 0 in `length`.
int load_ini_file(const char* path, char* buffer, int* length);

/// Searches the text for the key in the section. Both match by prefix: the section name or key
/// that stands in the text is the beginning of the one asked for. Returns 1 when found, else 0.
/// The positions are indexes into the text, -1 when not found; the section's may be set even
/// when the key is not found:
/// `section_start` after the '[', `section_end` the start of the section's first line,
/// `key_start` the line start, `key_end` the position before '=', `value_start` after '=',
/// `value_end` the line end.
int parse_file(const char* section, const char* key, const char* text, int* section_start,
               int* section_end, int* key_start, int* key_end, int* value_start, int* value_end);

/// The text of the file, as `load_ini_file` loads it; empty when it cannot be opened.
std::string profile_text(const char* path);

/// Looks the key up in such a text: true when it was found and its value is in `out`, cleared over
/// its whole `size` and cut to `size` - 1 bytes. Nothing is written else.
bool profile_value(const std::string& text, const char* section, const char* key, char* out,
                   int size);

/// Reads a value into `out` (cleared over its whole `size`), cut to `size` - 1 bytes; 1 when
/// found. Otherwise 0, and the default, unless it is null, is copied with at most `size` bytes
/// and no NUL when it fills them. Nothing is written when `size` is not positive.
int read_profile_string(const char* section, const char* key, char* out, int size,
                        const char* default_value, const char* path);

/// Same as `read_profile_string`.
int QMRGetPrivateProfileString(const char* section, const char* key, char* out, int size,
                               const char* default_value, const char* path);

/// The value's number (at most 31 characters of it; text that is no number is 0), or the default
/// when the key is not found.
int read_profile_int(const char* section, const char* key, int default_value, const char* path);

/// Sets the value of the key: replaced where it stands, else inserted as the first line of the
/// section, else in a new section at the end. Returns 1 when the file was rewritten; 0, the old
/// file kept and a warning given, when it cannot be written or old or new text is larger than
/// 131,071 bytes.
int write_profile_string(const char* section, const char* key, const char* value, const char* path);

/// `write_profile_string` with the number in decimal.
int write_profile_int(const char* section, const char* key, int value, const char* path);

/// The pure middle of `write_profile_string`: the text with the value set.
std::string with_profile_value(const std::string& text, const std::string& section,
                               const std::string& key, const std::string& value);
