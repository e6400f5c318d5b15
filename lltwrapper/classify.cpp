// Arguments and environment in, a decision out. Deciding changes and prints nothing.
//
// The scan reads the same vector as the rebuild of the command, but by rules of its own: suffix
// options match in any case, values of other options are looked at like any argument, and "-S" or
// "-E" anywhere decides at once.
#include "lltwrapper/classify.h"

#include "commonfunc/env.h"
#include "commonfunc/path_name.h"
#include "commonfunc/text.h"
#include "lltld/program_objects.h"
#include "lltwrapper/wrapper_state.h"

#include <algorithm>
#include <cstddef>
#include <map>

namespace
{

/// Bytes of an absolute link output path that kernel target matching looks at.
constexpr std::size_t OUTPUT_PATH_LENGTH = 511;

/// What the argument scan found.
struct Scan {
    bool compile = false;    ///< "-c"
    bool has_output = false; ///< "-o" with a value
    bool run_as_is = false;  ///< "-S" or "-E"
    bool archiver = false;   ///< the tool of "-artool"
    std::string output;      ///< value of the last "-o"
    std::string archive;     ///< first archive named after the archiver
};

bool is_suffix_option(const std::string& argument)
{
    const char* const options[] = {"-objsuffix", "-binsuffix", "-artool", "-arsuffix"};
    return std::any_of(std::begin(options), std::end(options),
                       [&](const char* option) { return equals_nocase(argument, option); });
}

bool is_archiver(const std::string& argument)
{
    return !strArTools.empty() && equals_nocase(base_name(argument), strArTools);
}

/// The suffix is everything from the last dot of the whole argument, directories included.
bool has_archive_suffix(const std::string& argument)
{
    const std::size_t dot = argument.rfind('.');
    return dot != argument.npos && equals_nocase(argument.substr(dot), strArSuffix);
}

Scan scan_arguments(const std::vector<std::string>& arguments)
{
    Scan scan;
    for (std::size_t i = 0; i < arguments.size() && !scan.run_as_is; ++i) {
        const std::string& argument = arguments[i];
        if (argument == "-c") {
            scan.compile = true;
        } else if (argument == "-o") {
            // A last "-o" has no value: the tool reports that. The value is scanned as well.
            scan.has_output = scan.has_output || i + 1 < arguments.size();
            scan.output = i + 1 < arguments.size() ? arguments[i + 1] : scan.output;
        } else if (argument == "-S" || argument == "-E") {
            scan.run_as_is = true; // Kept: also as the value of another option
        } else if (is_suffix_option(argument)) {
            ++i;
        } else if (is_archiver(argument)) {
            scan.archiver = true;
        } else if (scan.archiver && scan.archive.empty() && has_archive_suffix(argument)) {
            scan.archive = argument;
        }
    }
    return scan;
}

std::string up_to_first_dot(const std::string& name)
{
    return name.substr(0, name.find('.'));
}

/// The first list entry, in byte order of the keys, whose key occurs in the path.
TargetMatch match_target(const std::string& list, const std::string& path)
{
    std::map<std::string, std::string> targets;
    strsplit_m(list.c_str(), ':', ',', targets);
    for (const auto& [key, value] : targets) {
        if (!key.empty() && !value.empty() && path.find(key) != std::string::npos) {
            return {key, value};
        }
    }
    return {};
}

std::string module_name_of(const std::string& name)
{
    if (name == ".tmp_vmlinux1") {
        return "tmp_vmlinux1";
    }
    if (name.find('.') != std::string::npos && env_int("LLTLD_AVOID_SAME_NAME") == 1) {
        std::string whole = name.substr(0, MODULE_NAME_LENGTH);
        std::replace(whole.begin(), whole.end(), '.', '_');
        return whole;
    }
    return up_to_first_dot(name);
}

/// Kernel targets named by the user's lists; a link of any other output runs unchanged.
void decide_by_lists(const std::string& builtin, const std::string& modules, Decision& decision)
{
    decision.output_path = absolute_path(decision.output).substr(0, OUTPUT_PATH_LENGTH);
    decision.builtin = match_target(builtin, decision.output_path);
    decision.module = match_target(modules, decision.output_path);
    const bool listed = !decision.builtin.name.empty() || !decision.module.name.empty();
    decision.mode = listed ? Mode::link : Mode::unchanged;
    decision.reason = listed ? Reason::kernel_target : Reason::no_kernel_target;
}

/// Without lists only the steps of the kernel image count: the first is a link like any other,
/// the last ones get the stub object, everything else runs unchanged.
void decide_by_image_step(Decision& decision)
{
    const std::string name = base_name(decision.output);
    const bool last = name == ".tmp_vmlinux2" || name == "vmlinux";
    const bool first = name == ".tmp_vmlinux1";
    decision.mode = last ? Mode::kernel_image : (first ? Mode::link : Mode::unchanged);
    decision.reason = last || first ? Reason::kernel_image_step : Reason::no_kernel_image_step;
}

void decide_link(Decision& decision)
{
    decision.mode = Mode::link;
    decision.reason = Reason::output_option;
    if (decision.token == 1) {
        const std::string builtin = env_text("LLT_TargetName");
        const std::string modules = env_text("LLT_TargetName_KO");
        if (builtin.empty() && modules.empty()) {
            decide_by_image_step(decision);
        } else {
            decide_by_lists(builtin, modules, decision);
        }
    }
    if (decision.mode == Mode::link) {
        decision.link_name = module_name_of(base_name(decision.output));
    }
}

/// The kernel build's module-information objects. Kept: an output "mod.o" without a directory or
/// stem counts as well.
bool is_module_information(const std::string& output)
{
    const std::size_t at = output.rfind(".mod.o");
    return (at == std::string::npos ? output : output.substr(at + 1)) == "mod.o";
}

void decide_compile(Decision& decision)
{
    const bool skipped = decision.token == 2 && is_module_information(decision.output);
    decision.mode = skipped ? Mode::unchanged : Mode::compile;
    decision.reason = skipped ? Reason::module_information : Reason::compile_option;
}

} // namespace

Decision decide(const std::vector<std::string>& arguments)
{
    const Scan scan = scan_arguments(arguments);
    Decision decision;
    decision.has_archiver = scan.archiver;
    decision.archive = scan.archive;
    decision.output = scan.output;
    decision.link_name = strLinkName;
    decision.token = iToken_wrapper;
    if (!scan.archive.empty()) {
        decision.link_name = up_to_first_dot(base_name(scan.archive));
        decision.archive_path = absolute_path(scan.archive);
    }
    if (scan.run_as_is) {
        decision.reason = Reason::preprocess_or_assemble;
        return decision;
    }
    decision.token = env_int("lltwrapper_cfg");
    if (scan.compile) {
        decide_compile(decision);
    } else if (scan.has_output) {
        decide_link(decision);
    } else if (scan.archiver) {
        decision.mode = Mode::archive;
        decision.reason = Reason::archiver;
    }
    return decision;
}
