// A table of tools; each counts also with a target before its name and a version after it. A
// launcher has neither.
#include "lltcov/common/tool_kind.h"

#include <algorithm>
#include <cstddef>

namespace
{

struct Tool {
    const char* name;
    ToolKind kind;
};

constexpr Tool TOOLS[] = {
    {"gcc", ToolKind::compiler},    {"g++", ToolKind::compiler},     {"cc", ToolKind::compiler},
    {"c++", ToolKind::compiler},    {"c89", ToolKind::compiler},     {"c99", ToolKind::compiler},
    {"clang", ToolKind::compiler},  {"clang++", ToolKind::compiler}, {"ar", ToolKind::archiver},
    {"gcc-ar", ToolKind::archiver}, {"llvm-ar", ToolKind::archiver}, {"ld", ToolKind::linker},
    {"ccache", ToolKind::launcher}, {"sccache", ToolKind::launcher}, {"distcc", ToolKind::launcher},
    {"icecc", ToolKind::launcher},
};

/// The name without the version after it: "gcc" of "gcc-12.2".
std::string without_version(const std::string& name)
{
    const std::size_t digits = name.find_last_not_of("0123456789.") + 1;
    const bool has_version = digits > 1 && digits < name.size() && name[digits - 1] == '-';
    return has_version ? name.substr(0, digits - 1) : name;
}

/// True for three parts at least, each with its dash: "arm-none-eabi-".
bool is_target(const std::string& text)
{
    const bool is_plain =
        text.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789_-") == text.npos;
    return is_plain && text[0] != '-' && text.find("--") == text.npos &&
           std::count(text.begin(), text.end(), '-') >= 3;
}

} // namespace

ToolKind kind_of_tool(const std::string& name)
{
    const std::string tool = without_version(name);
    for (const Tool& known : TOOLS) {
        if (name == known.name) {
            return known.kind;
        }
        const std::string end = known.name;
        const std::size_t start = tool.size() - std::min(tool.size(), end.size());
        if (known.kind != ToolKind::launcher && tool.substr(start) == end &&
            (start == 0 || is_target(tool.substr(0, start)))) {
            return known.kind;
        }
    }
    return ToolKind::none;
}
