// Programs are found in two ways: on PATH, by the wrapper's shell, and beside lltcov, by the shims.
#include "commonfunc/env.h"
#include "commonfunc/file_ops.h"
#include "commonfunc/file_tree.h"
#include "commonfunc/path_search.h"
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
    const std::string beside = find_program({program_directory()}, name);
    const std::string on_path = find_program(path_directories(), name);
    if (on_path.empty() && beside.empty()) {
        findings.add("programs",
                     name +
                         " is neither on PATH nor beside lltcov; build and install the tool set");
    } else if (on_path.empty() && shim_directories().empty()) {
        findings.add("programs",
                     name + " is not on PATH; append '" + program_directory() + "', or use shims");
    } else if (!on_path.empty() && !beside.empty() && !is_same_file(on_path, beside)) {
        findings.add("programs", "'" + on_path + "' is used, not '" + beside +
                                     "'; put its directory first on PATH unless that is meant");
    }
}

/// Parts of the tool set that its programs look for beside themselves.
void check_part(const Names& places, const std::string& what, Findings& findings)
{
    for (const std::string& place : places) {
        if (QMRFileExists((program_directory() + place).c_str()) != 0) {
            return;
        }
    }
    findings.add("programs", "'" + program_directory() + places.back() + "', " + what +
                                 ", is missing; build and install the tool set");
}

void check_tools(const Names& names, const char* what, Findings& findings)
{
    for (const std::string& name : names) {
        if (!find_program(path_directories(), name).empty()) {
            return;
        }
    }
    findings.add("programs", std::string("no ") + what + " is on PATH; install " + names[0]);
}

/// What is run instead of a shim that comes later on PATH.
void check_order(const Names& shims, Findings& findings)
{
    for (const std::string& directory : shims) {
        for (const std::string& name : names_in(directory)) {
            const std::string first = find_program(path_directories(), name);
            if (!tool_of_shim(directory + "/" + name).empty() && !first.empty() &&
                tool_of_shim(first).empty()) {
                findings.add("tools before their shims",
                             "'" + first + "' stands before its shim on PATH; put '" + directory +
                                 "' first");
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
                             "', which is gone; remove it or run lltcov shims again");
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
    if (!find_program({program_directory()}, "lltcc").empty()) {
        check_part({"/lltcc.d/as", "/../lib/lltcov/lltcc.d/as"}, "which lltcc needs", findings);
    }
    const std::string runtime = env_text("LLTCOV_RUNTIME");
    if (!runtime.empty() && QMRFileExists(runtime.c_str()) == 0) {
        findings.add("programs", "LLTCOV_RUNTIME names '" + runtime +
                                     "', which does not exist; unset it or name liblltcov_rt.a");
    } else if (runtime.empty() && !find_program({program_directory()}, "lltld").empty()) {
        check_part({"/lib/lltcov/liblltcov_rt.a", "/../runtime/liblltcov_rt.a",
                    "/../lib/lltcov/liblltcov_rt.a"},
                   "the coverage runtime", findings);
    }
    check_tools({"gcc", "cc", "clang"}, "C compiler", findings);
    check_tools({"binutils", "ar", "gcc-ar", "llvm-ar"}, "archiver", findings);
}

void check_shims(Examined&, Findings& findings)
{
    const Names shims = shim_directories();
    if (shims.empty()) {
        if (is_wrapping_on()) {
            findings.add(
                "shims",
                "LLT_WRAP is on, but no shims are on PATH; run lltcov shims DIR and put DIR first on PATH");
        }
        return;
    }
    if (!is_wrapping_on()) {
        findings.add(
            "shims",
            "'" + shims[0] +
                "' is on PATH, but LLT_WRAP is off: nothing is wrapped; set LLT_WRAP=1 for the build");
    }
    check_order(shims, findings);
    for (const std::string& directory : shims) {
        check_shim_tools(directory, findings);
    }
}
