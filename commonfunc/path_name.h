// Names and paths as texts: splitting, making absolute, and the identifier form of a name.
#pragma once

#include <string>

/// The text after the last '/', or the whole text when there is none.
std::string base_name(const std::string& path);

/// The parts of a path as `QMRSplitpath` finds them. A part that it does not reach is marked by
/// its flag, so that a caller can leave its own value untouched.
struct SplitPath {
    std::string directory;
    std::string name;
    std::string extension;
    bool has_name = false;
    bool has_extension = false;
};

/// Splits off the text after the last '.' of the whole path, then the text after the last '/' of
/// what remains; the rest is the directory.
SplitPath split_path(const std::string& path);

/// `split_path` into the caller's buffers, each of which may be null and must have room for its
/// part with a NUL. Outputs that are not reached stay untouched: without a '.' the extension,
/// without a '/' before it the name (the stem is then the directory).
void QMRSplitpath(const char* path, char* directory, char* name, char* extension);

/// Same as `QMRSplitpath`.
void Caddis_Splitpath(const char* path, char* directory, char* name, char* extension);

/// The path made absolute and free of symbolic links by realpath(3). For a path that does not
/// exist it is what realpath leaves: the path up to and with the first missing or inaccessible
/// component, or an empty text where the failure is another one.
std::string absolute_path(const std::string& path);

/// `absolute_path` into the caller's buffer of at least PATH_MAX bytes; a failure is not
/// reported and leaves the buffer as realpath leaves it.
void ConvertToAbsolutePath(const char* path, char* out);

/// Copies the path as it is: this platform needs no conversion. The size is not used, so `dst`
/// must have room for the whole path. Returns 0 when a pointer is null, else 1.
int cygwin_conv_path_windows2linux(const char* src, char* dst, int size);

/// The identifier form of a name: letters, digits and '_' stand, another byte of 1 to 127 becomes
/// its decimal code ("a.b" gives "a46b"), and a byte of 128 or more becomes the single byte
/// (byte + 48) modulo 256, which for 0xD0 is a NUL. As a C string the result ends there.
std::string identifier_form(const std::string& name);

/// Writes `identifier_form` of the name and a NUL into `out`; a name of n bytes needs up to
/// 3 n + 1 bytes.
void GetInstDbName(char* out, const char* name);
