// Programs are looked for as the wrapper's shell does: on PATH, and last in the installation.
#include "commonfunc/env.h"
#include "commonfunc/file_ops.h"
#include "commonfunc/file_tree.h"
#include "commonfunc/own_files.h"
#include "commonfunc/path_search.h"
#include "commonfunc/shell.h"
#include "lltcov/common/console.h"
#include "lltcov/common/tool_kind.h"
#include "lltcov/doctor/doctor.h"
#include "lltcov/shims/shim_text.h"
#include "lltwrapper/forward_cmd.h"

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace
{

namespace fs = std::filesystem;

using Names = std::vector<std::string>;

std::string install_again()
{
    return cured_by("./dev install /usr/local", "in the sources of lltwrapper");
}

std::string put_first(const std::string& directory, const std::string& where = "")
{
    return cured_by("PATH=" + shell_word(directory) + ":$PATH", where);
}

bool is_wrapping_on()
{
    const std::string value = env_text("LLT_WRAP");
    return !value.empty() && value != "0";
}

bool is_same_file(const std::string& a, const std::string& b)
{
    std::error_code error;
    return fs::equivalent(a, b, error);
}

Names shim_directories()
{
    Names found;
    for (const std::string& directory : path_directories()) {
        const Names names = names_in(directory);
        if (std::any_of(names.begin(), names.end(), [&](const std::string& name) {
                return kind_of_tool(name) != ToolKind::none &&
                       !tool_of_shim(directory + "/" + name).empty();
            })) {
            found.push_back(directory);
        }
    }
    return found;
}

void check_own_program(const std::string& name, Findings& findings)
{
    const std::string beside = own_file(name);
    const std::string on_path = find_program(path_directories(), name);
    if (on_path.empty() && beside.empty()) {
        findings.add("programs",
                     name + " is neither on PATH nor installed with lltcov" + install_again());
    } else if (!on_path.empty() && !beside.empty() && !is_same_file(on_path, beside)) {
        findings.add("programs",
                     "'" + on_path + "' is used, not '" + beside + "'" +
                         put_first(beside.substr(0, beside.rfind('/')), "unless that is meant"));
    }
}

/// Parts of the tool set that its programs look for.
void check_part(const std::string& name, const std::string& what, Findings& findings)
{
    if (own_file(name).empty()) {
        findings.add("programs", "'" + name + "', " + what + ", is missing where '" +
                                     program_directory() + "' has its parts" + install_again());
    }
}

void check_tools(const Names& names, const char* what, Findings& findings)
{
    for (const std::string& name : names) {
        if (!find_program(path_directories(), name).empty()) {
            return;
        }
    }
    findings.add("programs", std::string("no ") + what + " is on PATH" +
                                 cured_by("apt-get install " + names[0], "on Debian"));
}

/// What is run instead of a shim that comes later on PATH.
void check_order(const Names& shims, Findings& findings)
{
    for (const std::string& directory : shims) {
        for (const std::string& name : names_in(directory)) {
            const std::string first = find_program(path_directories(), name);
            if (!tool_of_shim(directory + "/" + name).empty() && !first.empty() &&
                tool_of_shim(first).empty()) {
                findings.add("tools before their shims", "'" + first +
                                                             "' stands before its shim on PATH" +
                                                             put_first(directory));
            }
        }
    }
}

void check_shim_tools(const std::string& directory, Findings& findings)
{
    for (const std::string& name : names_in(directory)) {
        const std::string tool = tool_of_shim(directory + "/" + name);
        if (!tool.empty() && !is_program(tool)) {
            findings.add("shims without a tool",
                         "'" + directory + "/" + name + "' stands for '" + tool +
                             "', which is gone" +
                             cured_by("rm " + shell_word(directory + "/" + name)));
        }
    }
}

} // namespace

void check_programs(Examined&, Findings& findings)
{
    const char* const driver = link_driver(env_int("lltwrapper_cfg"));
    for (const char* name : {"lltwrapper", "lltcc", driver}) {
        if (name != nullptr) {
            check_own_program(name, findings);
        }
    }
    if (!own_file("lltcc").empty()) {
        check_part("lltcc.d/as", "which lltcc needs", findings);
    }
    const std::string runtime = env_text("LLTCOV_RUNTIME");
    if (!runtime.empty() && QMRFileExists(runtime.c_str()) == 0) {
        findings.add("programs", "LLTCOV_RUNTIME names '" + runtime + "', which does not exist" +
                                     cured_by("unset LLTCOV_RUNTIME"));
    } else if (runtime.empty() && !own_file("lltld").empty()) {
        check_part("liblltcov_rt.a", "the coverage runtime", findings);
    }
    check_tools({"gcc", "cc", "clang"}, "C compiler", findings);
    check_tools({"binutils", "ar", "gcc-ar", "llvm-ar"}, "archiver", findings);
}

void check_shims(Examined&, Findings& findings)
{
    const Names shims = shim_directories();
    if (shims.empty()) {
        if (is_wrapping_on()) {
            findings.add("shims", "LLT_WRAP is on, but no shims are on PATH" +
                                      cured_by("lltcov shims ~/shims && PATH=~/shims:$PATH"));
        }
        return;
    }
    if (!is_wrapping_on()) {
        findings.add("shims", "'" + shims[0] +
                                  "' is on PATH, but LLT_WRAP is off: nothing is wrapped" +
                                  cured_by("export LLT_WRAP=1", "for the build"));
    }
    check_order(shims, findings);
    for (const std::string& directory : shims) {
        check_shim_tools(directory, findings);
    }
}
