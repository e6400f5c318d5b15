// A directory of shims stands first on PATH: configure steps see the real tools, and a build with
// LLT_WRAP=1 goes through the wrapper without a change to its makefiles. Which tools: every name on
// PATH that is a known tool, also with a target before it or a version after it.
#include "lltcov/shims/shims.h"
#include "commonfunc/file_io.h"
#include "commonfunc/file_ops.h"
#include "commonfunc/file_tree.h"
#include "commonfunc/message.h"
#include "commonfunc/path_name.h"
#include "commonfunc/path_search.h"
#include "commonfunc/shell.h"
#include "lltcov/common/command_line.h"
#include "lltcov/common/commands.h"
#include "lltcov/common/tool_kind.h"
#include "lltcov/shims/shim_text.h"

#include <cstdio>
#include <filesystem>
#include <map>
#include <string>
#include <sys/stat.h>
#include <utility>
#include <vector>

namespace
{

/// Names that are missed when they are not on PATH.
constexpr const char* EXPECTED[] = {"gcc",     "g++", "cc",     "c++", "clang",
                                    "clang++", "ar",  "gcc-ar", "ld"};

/// What is first on PATH of every tool, by name. Shims, also links to them, are passed over: a shim
/// of a shim would wrap twice, or run in circles.
std::map<std::string, std::string> tools_on_path()
{
    std::map<std::string, std::string> tools;
    for (const std::string& directory : path_directories()) {
        for (const std::string& name : names_in(directory)) {
            const std::string path = directory + "/" + name;
            if (kind_of_tool(name) != ToolKind::none && is_program(path) && !is_shim(path)) {
                tools.emplace(name, path);
            }
        }
    }
    return tools;
}

/// Beside this program, as both are built and installed, else on PATH; empty when there is none.
std::string find_wrapper()
{
    std::vector<std::string> directories = path_directories();
    directories.insert(directories.begin(), program_directory());
    return find_program(directories, "lltwrapper");
}

/// False with a message when something else than a shim is there: the directory of the real tools
/// must never be overwritten.
bool is_free_for_shim(const std::string& path)
{
    struct stat info = {};
    if (::lstat(path.c_str(), &info) == 0 && (!S_ISREG(info.st_mode) || !is_shim(path))) {
        warn("'%s' is no shim and stays; choose an empty directory", path.c_str());
        return false;
    }
    return true;
}

/// False with a message when the file cannot be written. One that is there stays: a build may be
/// running it.
bool write_shim(const std::string& path, const std::string& text)
{
    std::string written;
    if (read_whole_file(path, written) == Reading::done && written == text && is_program(path)) {
        return true;
    }
    return replace_file(path, text) == Writing::done && ::chmod(path.c_str(), 0755) == 0;
}

void report(const std::map<std::string, std::string>& tools, const std::string& directory)
{
    for (const auto& [name, real] : tools) {
        std::printf("%-28s %s\n", name.c_str(), real.c_str());
    }
    for (const char* name : EXPECTED) {
        if (tools.count(name) == 0) {
            std::printf("%-28s not on PATH, no shim\n", name);
        }
    }
    std::printf(
        "%zu shims. Configure and build with PATH=%s:$PATH; set LLT_WRAP=1 for the build only.\n",
        tools.size(), shell_word(directory).c_str());
}

} // namespace

std::map<std::string, std::string> write_shims(const std::string& directory)
{
    std::filesystem::create_directories(directory);
    const std::string wrapper = find_wrapper();
    auto tools = tools_on_path();
    if (wrapper.empty()) {
        warn("no lltwrapper beside lltcov and on PATH; install it");
        return {};
    }
    if (tools.empty()) {
        warn("no compiler on PATH; set PATH");
        return {};
    }
    // All or none: a directory of other programs shall not get some of the shims.
    for (const auto& [name, real] : tools) {
        if (!is_free_for_shim(directory + "/" + name)) {
            return {};
        }
    }
    for (const auto& [name, real] : tools) {
        if (!write_shim(directory + "/" + name, shim_text(kind_of_tool(name), real, wrapper))) {
            return {};
        }
    }
    return tools;
}

int run_shims(const Arguments& arguments)
{
    const CommandLine line(arguments, {}, {});
    if (line.operands().size() != 1 || line.operands()[0].empty()) {
        throw UsageError("shims needs one directory");
    }
    if (line.operands()[0].find(':') != std::string::npos) {
        throw UsageError("a directory whose name holds ':' cannot be on PATH");
    }
    const auto tools = write_shims(line.operands()[0]);
    if (!tools.empty()) {
        report(tools, absolute_path(line.operands()[0]));
    }
    return tools.empty() ? 1 : 0;
}
