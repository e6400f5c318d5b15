// Path texts. The order of `split_path` and the two oddities of `identifier_form` are relied upon
// by the names that drivers and earlier runs left on disk, so they stay.
#include "commonfunc/path_name.h"

#include <climits>
#include <cstdlib>
#include <cstring>

namespace
{

/// Copies a whole text with its NUL; the caller of the operation vouches for the room.
void put(const std::string& text, char* out)
{
    std::memcpy(out, text.c_str(), text.size() + 1);
}

} // namespace

std::string base_name(const std::string& path)
{
    return path.substr(path.rfind('/') + 1);
}

SplitPath split_path(const std::string& path)
{
    SplitPath parts;
    parts.directory = path;
    // Kept: the extension is searched in the whole path first, so a dot in a directory name takes
    // the rest of the path ("/a.d/c" has the extension "d/c").
    const std::size_t dot = parts.directory.rfind('.');
    if (dot != std::string::npos) {
        parts.extension = parts.directory.substr(dot + 1);
        parts.has_extension = true;
        parts.directory.resize(dot);
    }
    const std::size_t slash = parts.directory.rfind('/');
    if (slash != std::string::npos) {
        parts.name = parts.directory.substr(slash + 1);
        parts.has_name = true;
        parts.directory.resize(slash);
    }
    return parts;
}

void QMRSplitpath(const char* path, char* directory, char* name, char* extension)
{
    if (path == nullptr) {
        return;
    }
    const SplitPath parts = split_path(path);
    if (extension != nullptr && parts.has_extension) {
        put(parts.extension, extension);
    }
    if (name != nullptr && parts.has_name) {
        put(parts.name, name);
    }
    if (directory != nullptr) {
        put(parts.directory, directory);
    }
}

void Caddis_Splitpath(const char* path, char* directory, char* name, char* extension)
{
    QMRSplitpath(path, directory, name, extension);
}

std::string absolute_path(const std::string& path)
{
    char absolute[PATH_MAX] = {};
    ConvertToAbsolutePath(path.c_str(), absolute);
    return absolute;
}

void ConvertToAbsolutePath(const char* path, char* out)
{
    // The result is not looked at: on a missing component glibc leaves the path up to it in
    // `out`, and that is what a first build has to go by.
    [[maybe_unused]] const char* const resolved = ::realpath(path, out);
}

int cygwin_conv_path_windows2linux(const char* src, char* dst, int /*size*/)
{
    if (src == nullptr || dst == nullptr) {
        return 0;
    }
    put(src, dst);
    return 1;
}

std::string identifier_form(const std::string& name)
{
    std::string out;
    for (const char c : name) {
        const auto byte = static_cast<unsigned char>(c);
        const bool letter = (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z');
        if (letter || (byte >= '0' && byte <= '9') || byte == '_') {
            out += c;
        } else if (byte < 128) {
            out += std::to_string(byte);
        } else {
            // Kept: such a byte is treated as a one-digit number, 48 added to it as a signed
            // character. Databases of existing projects have these names.
            out += static_cast<char>((byte + 48) % 256);
        }
    }
    return out;
}

void GetInstDbName(char* out, const char* name)
{
    put(identifier_form(name), out);
}
