// One builder per forwarded command. Project root and stub mode go in as they are, not
// escaped: the drivers have always been called so, and a root with a blank has never worked.
#include "lltwrapper/forward_cmd.h"

#include "commonfunc/Caddis_func.h"
#include "commonfunc/env.h"
#include "commonfunc/message.h"
#include "commonfunc/path_name.h"
#include "commonfunc/text.h"
#include "contract/names.h"
#include "contract/places.h"
#include "lltld/program_objects.h"
#include "lltwrapper/word_size.h"
#include "lltwrapper/wrapper_state.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace
{

/// Link drivers by `iToken_wrapper`; null where a token has none.
constexpr const char* LINK_DRIVERS[] = {
    "lltld",                 // 0: user space
    "lltld_kernel",          // 1: kernel targets
    "lltld_kernel",          // 2: kernel, module-information objects left out
    "hotpatch",              // 3
    "lltld_noos",            // 4: bare metal
    nullptr,                 // 5: unassigned on purpose
    "lltld_noos",            // 6
    "lltld_omu",             // 7
    "link_fixaddr_hotpatch", // 8
};

/// Bytes of a target name that count.
constexpr std::size_t TARGET_NAME_LENGTH = 255;

/// The target's name: a user's name for a kernel target takes precedence over one for a kernel
/// module, and both over the module name.
std::string choose_target_name()
{
    if (!strLinkNameUser.empty()) {
        say("TUSK-NAME_BY_USER_KRNL:: %s\n", strLinkNameUser.c_str());
        return strLinkNameUser;
    }
    if (!strLinkNameUserKo.empty()) {
        say("TUSK-NAME_BY_USER_KO:: %s\n", strLinkNameUserKo.c_str());
        ::setenv("lltwrapper_cfg_inner", "1", 1);
        return strLinkNameUserKo;
    }
    return TUSK_LINUXCADDIS_GET3264STR();
}

void append_image_stub()
{
    if (!env_is_filled("LLT_TargetName")) {
        pOriginalCmd +=
            places::stub(places::work_area(lltdbRootpath, "tmp_vmlinux1"), "tmp_vmlinux1", ".o");
    }
}

} // namespace

const char* link_driver(int token)
{
    const auto count = static_cast<int>(std::size(LINK_DRIVERS));
    return token >= 0 && token < count ? LINK_DRIVERS[token] : nullptr;
}

void GenerateCMD2LLTCC()
{
    // Kept: the project name is always LLTTEMP, and two blanks follow it.
    strLLTCC = "lltcc " PROJECT_OPTION " " + lltdbRootpath +
               " " NAME_OPTION " " TEMPORARY_NAME "  " MODE_OPTION " " + lltcovmode + " " +
               pOriginalCmd;
}

void GenerateCMD2LLTLD()
{
    if (strLinkName.empty() && strLinkNameUser.empty() && strLinkNameUserKo.empty()) {
        say("lltwrapper error, NULL projectname\n");
        std::fflush(stdout);
        return;
    }
    const std::string target = choose_target_name().substr(0, TARGET_NAME_LENGTH);
    // As a C string: a byte that maps to NUL ends the name.
    strLinkName = identifier_form(target).c_str();
    if (const char* driver = link_driver(iToken_wrapper)) {
        strLLTLD = std::string(driver) + " " PROJECT_OPTION " " + lltdbRootpath +
                   " " NAME_OPTION " " + strLinkName + " " MODE_OPTION " " + lltcovmode + " " +
                   pOriginalCmd;
    }
}

void GenerateCMD2AR()
{
    char stub[STUB_PATH_LENGTH + 1];
    if (!format_bounded(stub, "%s/obj/" STUB_PREFIX "%s.o", g_lxprj->szCovDictPath,
                        g_lxprj->modName)) {
        warn(
            "the path of the stub object is longer than %zu bytes: '%s'; use a shorter project path",
            STUB_PATH_LENGTH, stub);
    }
    const int found = static_cast<int>(pOriginalCmd.find(arname));
    const std::size_t after_name = static_cast<std::size_t>(found + 1) + arname.size();
    if (found < 0) {
        // Kept: the position -1 counts on, so the stub lands at the length of the name.
        warn(
            "the archive '%s' does not stand so in the command '%s': the stub object goes to byte %zu of it; name the archive without characters that the shell needs escaped",
            arname.c_str(), beginning_of(pOriginalCmd).c_str(), after_name);
    }
    strLLTAR = pOriginalCmd;
    const std::size_t at = std::min(after_name, strLLTAR.size());
    strLLTAR.insert(at, std::string(stub) + " ");
}

const std::string& build_command(Mode mode)
{
    switch (mode) {
    case Mode::compile:
        GenerateCMD2LLTCC();
        return strLLTCC;
    case Mode::link:
        GenerateCMD2LLTLD();
        return strLLTLD;
    case Mode::archive:
        GenerateCMD2AR();
        return strLLTAR;
    case Mode::kernel_image:
        append_image_stub();
        break;
    case Mode::unchanged:
        break;
    }
    return pOriginalCmd;
}
