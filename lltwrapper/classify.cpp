// Arguments and environment in; one mode flag, the link names and `arname` out.
//
// The scan reads the same vector as the rebuild of the command, but by rules of its own: suffix
// options match in any case, values of other options are looked at like any argument, and "-S" or
// "-E" anywhere decides at once.
#include "lltwrapper/classify.h"

#include "lltwrapper/archive_prepare.h"
#include "lltwrapper/wrapper_state.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace
{

/// Bytes of an absolute link output path that kernel target matching looks at.
constexpr std::size_t OUTPUT_PATH_LENGTH = 511;

/// What the argument scan found.
struct Scan {
    bool compile = false;          ///< "-c"
    bool has_output = false;       ///< "-o" with a value
    bool run_as_is = false;        ///< "-S" or "-E"
    bool archiver = false;         ///< the tool of "-artool"
    std::string output;            ///< value of the last "-o"
    const char* archive = nullptr; ///< first archive named behind the archiver
};

bool is_suffix_option(const char* argument)
{
    const char* const options[] = {"-objsuffix", "-binsuffix", "-artool", "-arsuffix"};
    return std::any_of(std::begin(options), std::end(options),
                       [&](const char* option) { return equals_nocase(argument, option); });
}

bool is_archiver(const char* argument)
{
    return !strArTools.empty() && equals_nocase(base_name(argument).c_str(), strArTools.c_str());
}

/// The suffix is everything from the last dot of the whole argument, directories included.
bool has_archive_suffix(const char* argument)
{
    const char* dot = std::strrchr(argument, '.');
    return dot != nullptr && equals_nocase(dot, strArSuffix.c_str());
}

Scan scan_arguments(int argc, char** argv)
{
    Scan scan;
    for (int i = 1; i < argc && !scan.run_as_is; ++i) {
        const std::string argument = argv[i];
        if (argument == "-c") {
            scan.compile = true;
        } else if (argument == "-o") {
            // A last "-o" has no value: the tool reports that. The value is scanned as well.
            scan.has_output = scan.has_output || i + 1 < argc;
            scan.output = i + 1 < argc ? argv[i + 1] : scan.output;
        } else if (argument == "-S" || argument == "-E") {
            scan.run_as_is = true; // Kept: also as the value of another option
        } else if (is_suffix_option(argv[i])) {
            ++i;
        } else if (is_archiver(argv[i])) {
            scan.archiver = true;
        } else if (scan.archiver && scan.archive == nullptr && has_archive_suffix(argv[i])) {
            scan.archive = argv[i];
        }
    }
    return scan;
}

std::string up_to_first_dot(const std::string& name)
{
    return name.substr(0, name.find('.'));
}

void record_archive(const char* archive)
{
    strLinkName = up_to_first_dot(base_name(archive));
    arname = archive;
    copy_bounded(g_lxprj->szObjFile, absolute_path(archive));
}

/// The value of the first list entry, in byte order of the keys, whose key occurs in the path;
/// empty when none does. Prints the key.
std::string match_target(const std::string& list, const std::string& path)
{
    std::map<std::string, std::string> targets;
    strsplit_m(list.c_str(), ':', ',', targets);
    for (const auto& [key, value] : targets) {
        if (!key.empty() && !value.empty() && path.find(key) != std::string::npos) {
            print_info("\nitor_temp->first:: %s\n", key.c_str());
            return value;
        }
    }
    return "";
}

void choose_unchanged()
{
    lltcc_flag = lltld_flag = 0;
    ori_flag = 1;
}

/// Kernel targets named by the user's lists: sets their names, or lets the link run unchanged.
void match_kernel_lists(const std::string& builtin, const std::string& modules,
                        const std::string& output)
{
    const std::string path = absolute_path(output).substr(0, OUTPUT_PATH_LENGTH);
    print_info("\nlinkage-target:: %s\n", path.c_str());
    strLinkNameUser = match_target(builtin, path);
    if (!strLinkNameUser.empty()) {
        print_info("\nlinkage-target-meet-krnl:: %s\n", path.c_str());
    }
    strLinkNameUserKo = match_target(modules, path);
    if (!strLinkNameUserKo.empty()) {
        print_info("\nlinkage-target-meet-ko:: %s\n", path.c_str());
    }
    if (strLinkNameUser.empty() && strLinkNameUserKo.empty()) {
        choose_unchanged();
        print_info("\nlinkage-target-omitted:: %s\n", path.c_str());
    }
}

/// Without lists only the steps of the kernel image count: the first is a link like any other,
/// the last ones get the stub object, everything else runs unchanged.
void match_kernel_image(const std::string& name)
{
    if (name == ".tmp_vmlinux2" || name == "vmlinux") {
        lltld_flag = 0;
        special_flag = 1;
    } else if (name != ".tmp_vmlinux1") {
        choose_unchanged();
    }
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

void classify_link(const std::string& output)
{
    lltld_flag = 1;
    if (iToken_wrapper == 1) {
        const std::string builtin = env_text("LLT_TargetName");
        const std::string modules = env_text("LLT_TargetName_KO");
        if (builtin.empty() && modules.empty()) {
            match_kernel_image(base_name(output));
        } else {
            match_kernel_lists(builtin, modules, output);
        }
    }
    if (lltld_flag == 1) {
        strLinkName = module_name_of(base_name(output));
    }
}

/// The kernel build's module-information objects. Kept: an output "mod.o" without a directory or
/// stem counts as well.
bool is_module_information(const std::string& output)
{
    const std::size_t at = output.rfind(".mod.o");
    return (at == std::string::npos ? output : output.substr(at + 1)) == "mod.o";
}

void classify_compile(const std::string& output)
{
    lltcc_flag = 1;
    if (iToken_wrapper == 2 && is_module_information(output)) {
        choose_unchanged();
    }
}

} // namespace

void checkstate(int argc, char** argv)
{
    const Scan scan = scan_arguments(argc, argv);
    if (scan.archive != nullptr) {
        record_archive(scan.archive);
    }
    if (scan.run_as_is) {
        choose_unchanged();
        return;
    }
    iToken_wrapper = env_int("lltwrapper_cfg");
    if (scan.compile) {
        classify_compile(scan.output);
    } else if (scan.has_output) {
        classify_link(scan.output);
    } else if (scan.archiver) {
        ar_flag = 1;
        prepare_archive(argc, argv);
    } else {
        choose_unchanged();
    }
}
