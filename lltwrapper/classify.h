// Which kind of build step the wrapped command is.
#pragma once

#include <string>
#include <vector>

/// What the wrapper does with a command.
enum class Mode {
    unchanged,
    compile,
    link,
    kernel_image, ///< the final link of a kernel image: unchanged, with the image's stub appended
    archive,      ///< runs unchanged when no member has coverage
};

/// What decided.
enum class Reason {
    preprocess_or_assemble, ///< "-S" or "-E" among the arguments
    compile_option,         ///< "-c"
    module_information,     ///< a compile of a kernel module's "*.mod.o", with "lltwrapper_cfg" 2
    output_option,          ///< "-o" with a value
    kernel_target,          ///< kernel mode: the output stands in a target list
    no_kernel_target,       ///< kernel mode: it stands in none
    kernel_image_step,      ///< kernel mode without lists: a link of the kernel image
    no_kernel_image_step,   ///< kernel mode without lists: any other link
    archiver,               ///< an argument is the archiver of "-artool"
    no_build_step,          ///< nothing of all this
};

/// An entry of a kernel target list whose key occurs in the output's path; empty when none does.
struct TargetMatch {
    std::string key;
    std::string name;
};

/// What the wrapper does with a command and why. What is not decided has the value that its object
/// in wrapper_state.h has already.
struct Decision {
    Mode mode = Mode::unchanged;
    Reason reason = Reason::no_build_step;
    bool has_archiver = false; ///< an argument is the archiver of "-artool"
    std::string archive;       ///< first archive named after the archiver, as it stands; or empty
    std::string archive_path;  ///< made absolute
    std::string output;        ///< value of the last "-o"
    std::string output_path;   ///< made absolute and cut, for the kernel target lists alone
    TargetMatch builtin;       ///< for `kernel_target`: the entry of "LLT_TargetName"
    TargetMatch module;        ///< the entry of "LLT_TargetName_KO"
    std::string link_name;     ///< for `strLinkName`
    int token = 0;             ///< for `iToken_wrapper`
};

/// Scans the arguments of the wrapper and decides. Reads the options that `rebuild_command`
/// recorded and the environment; changes and prints nothing.
Decision decide(const std::vector<std::string>& arguments);
