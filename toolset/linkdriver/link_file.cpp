// A linker script may stand in for a library: "INPUT(b.o -lm)", "GROUP ( libb.a )", with
// AS_NEEDED ( ... ) inside. Words are separated by white space or commas; see "Commands Dealing
// with Files" in the manual of GNU ld.
#include "toolset/linkdriver/link_file.h"

#include "commonfunc/file_io.h"
#include "commonfunc/text.h"
#include "lltld/archive_file.h"
#include "toolset/common/process.h"

#include <algorithm>
#include <cstddef>
#include <elf.h>
#include <string_view>
#include <sys/stat.h>

namespace
{

constexpr std::size_t ELF_BYTE_ORDER = 5; ///< 1 or 2: little or big endian
constexpr std::size_t ELF_TYPE = 16;      ///< two bytes, 1 for a relocatable object

/// The script's words; a parenthesis is one of its own.
std::vector<std::string> tokens_of(const std::string& text)
{
    std::vector<std::string> tokens = {""};
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (text.compare(i, 2, "/*") == 0) {
            i = std::min(text.find("*/", i + 2), text.size() - 2) + 1;
            tokens.emplace_back();
        } else if (c == '(' || c == ')') {
            tokens.emplace_back(1, c);
            tokens.emplace_back();
        } else if (std::string(" \t\r\n,;").find(c) != std::string::npos) {
            tokens.emplace_back();
        } else if (c != '"') {
            tokens.back() += c;
        }
    }
    return tokens;
}

void tell_if_not_read(const std::string& path, Reading reading)
{
    if (reading != Reading::done && reading != Reading::empty && reading != Reading::missing) {
        notice("'%s' is not read: %s; its coverage may be missing, link again", path.c_str(),
               why_not_read());
    }
}

} // namespace

FileKind kind_of(const std::string& path)
{
    struct stat status = {};
    if (::stat(path.c_str(), &status) != 0) {
        tell_if_not_read(path, means_absent(errno) ? Reading::missing : Reading::not_opened);
        return FileKind::missing;
    }
    if (!S_ISREG(status.st_mode)) {
        return FileKind::missing;
    }
    char start[ELF_TYPE + 2] = {};
    const auto take = [&](const char* piece, std::size_t size) {
        std::copy_n(piece, std::min(size, sizeof start), start);
        return false;
    };
    tell_if_not_read(path, read_in_pieces(path, take, sizeof start));
    const std::string_view bytes(start, sizeof start);
    if (is_archive(bytes)) {
        return FileKind::archive;
    }
    if (begins_with(bytes, ELFMAG)) {
        const std::size_t low = start[ELF_BYTE_ORDER] == 2 ? 1 : 0;
        return start[ELF_TYPE + low] == 1 && start[ELF_TYPE + 1 - low] == 0 ? FileKind::object
                                                                            : FileKind::image;
    }
    return begins_with(bytes, "BC\xC0\xDE") ? FileKind::object : FileKind::text;
}

bool read_input(const std::string& path, std::string& content)
{
    const Reading reading = read_whole_file(path, content);
    tell_if_not_read(path, reading);
    return reading == Reading::done;
}

std::string find_library(const std::string& name, bool is_static,
                         const std::vector<std::string>& directories)
{
    std::vector<std::string> files = {"lib" + name + ".so", "lib" + name + ".a"};
    if (name[0] == ':') {
        files = {name.substr(1)};
    } else if (is_static) {
        files.erase(files.begin());
    }
    for (const std::string& directory : directories) {
        for (const std::string& file : files) {
            std::string path = directory + "/" + file;
            if (!directory.empty() && kind_of(path) != FileKind::missing) {
                return path;
            }
        }
    }
    return "";
}

std::vector<std::string> inputs_of_script(const std::string& text)
{
    std::vector<std::string> inputs;
    std::string command;
    int depth = 0;
    for (const std::string& token : tokens_of(text)) {
        if (token == "(") {
            ++depth;
        } else if (token == ")") {
            depth -= depth > 0 ? 1 : 0;
        } else if (depth == 0 && !token.empty()) {
            command = token;
        } else if (!token.empty() && token != "AS_NEEDED" &&
                   (command == "INPUT" || command == "GROUP")) {
            inputs.push_back(token);
        }
    }
    return inputs;
}
