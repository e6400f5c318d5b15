// Names and paths in the caller's buffers: the size of one, and a path.
#include "commonfunc/file_ops.h"
#include "commonfunc/path_name.h"
#include "commonfunc/text.h"
#include "fuzz/fuzz.h"
#include "fuzz/models.h"

#include <cstring>
#include <sys/types.h>

namespace
{

std::string link_text; ///< where the link to the running program leads

/// A buffer of `size` bytes that a text with its NUL was written into, or nothing.
std::string filled(const std::string* text, std::size_t size)
{
    const std::string start = text != nullptr ? *text + '\0' : "";
    return start + std::string(size - start.size(), '#');
}

void check_split(const std::string& path)
{
    const std::size_t room = path.size() + 1;
    fuzz::Buffer directory(room), name(room), extension(room);
    QMRSplitpath(path.c_str(), directory.data(), name.data(), extension.data());
    const std::size_t dot = path.rfind('.');
    const std::string before = path.substr(0, dot);
    const std::size_t slash = before.rfind('/');
    const std::string parts[] = {before.substr(0, slash), before.substr(slash + 1),
                                 path.substr(dot + 1)};
    fuzz::same("directory", filled(&parts[0], room), directory.bytes());
    fuzz::same("name", filled(slash != std::string::npos ? &parts[1] : nullptr, room),
               name.bytes());
    fuzz::same("extension", filled(dot != std::string::npos ? &parts[2] : nullptr, room),
               extension.bytes());
    QMRSplitpath(path.c_str(), nullptr, nullptr, nullptr);
}

void check_copy(const std::string& text, std::size_t size)
{
    fuzz::Buffer out(size);
    QMRStrcpy(out.data(), text.c_str(), static_cast<int>(size));
    std::string expected = text.substr(0, size > 0 ? size - 1 : 0);
    expected.resize(size, '\0');
    fuzz::same("copy", expected, out.bytes());
}

void check_program_name(const std::string& link)
{
    link_text = link;
    fuzz::Buffer out(512);
    std::memset(out.data(), 0, 512);
    fuzz::same("result", 1, QMRGetCurrProcName(out.data()));
    std::string expected = link.substr(0, 512);
    const std::size_t bracket = expected.find('(');
    if (bracket != std::string::npos && bracket > 0) {
        expected[bracket - 1] = '\0';
    }
    expected.resize(512, '\0');
    fuzz::same("name of the program", expected, out.bytes());
}

} // namespace

/// In the place of the system's.
extern "C" ssize_t readlink(const char*, char* out, std::size_t size)
{
    const std::size_t length = std::min(size, link_text.size());
    std::memcpy(out, link_text.data(), length);
    return static_cast<ssize_t>(length);
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::Input input(data, size);
    const std::size_t room = input.number(256);
    const std::string path = input.rest().c_str();
    check_split(path);
    check_copy(path, room);
    check_program_name(path);
    fuzz::Buffer identifier(3 * path.size() + 1);
    GetInstDbName(identifier.data(), path.c_str());
    fuzz::same("identifier", fuzz::identifier_of(path), identifier.data());
    return 0;
}
