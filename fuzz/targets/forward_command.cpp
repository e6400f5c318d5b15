// The forwarded commands, from what is known of a step: a line each for the number of the link
// driver, the link's name, the user's names of a target and of a module, the word size, the
// archive, the project, the stub mode and the rebuilt command.
#include "commonfunc/Caddis_func.h"
#include "fuzz/fuzz.h"
#include "fuzz/models.h"
#include "lltld/program_objects.h"
#include "lltwrapper/forward_cmd.h"
#include "lltwrapper/wrapper_state.h"

#include <cstdlib>
#include <cstring>
#include <map>

namespace
{

std::string target_of_link()
{
    const std::string user = strLinkNameUser.empty() ? strLinkNameUserKo : strLinkNameUser;
    return fuzz::identifier_of((user.empty() ? strLinkName + g_str_m32m64 : user).substr(0, 255));
}

std::string link_command()
{
    const std::map<int, std::string> drivers = {
        {0, "lltld"},      {1, "lltld_kernel"}, {2, "lltld_kernel"}, {3, "hotpatch"},
        {4, "lltld_noos"}, {6, "lltld_noos"},   {7, "lltld_omu"},    {8, "link_fixaddr_hotpatch"}};
    const auto driver = drivers.find(iToken_wrapper);
    const bool is_named = !(strLinkName + strLinkNameUser + strLinkNameUserKo).empty();
    return driver == drivers.end() || !is_named
               ? ""
               : driver->second + " -qmr_current_prj_path " + lltdbRootpath + " -projectname " +
                     target_of_link() + " -qmr_coverage_stub_mold " + lltcovmode + " " +
                     pOriginalCmd;
}

/// The stub stands after the first occurrence of the archive's name and a blank.
std::string archive_command()
{
    const std::size_t found = pOriginalCmd.find(arname);
    const std::size_t before = found == std::string::npos ? 0 : found + 1;
    const std::size_t at = std::min(pOriginalCmd.size(), before + arname.size());
    return pOriginalCmd.substr(0, at) + "/D/obj/__code_measure_stub_lib_M.o " +
           pOriginalCmd.substr(at);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::set_environment("TUSK_ENABLE_m32m64", "1");
    const HeldMessages quiet;
    fuzz::Input input(data, size);
    iToken_wrapper = std::atoi(input.line().substr(0, 9).c_str());
    for (std::string* text : {&strLinkName, &strLinkNameUser, &strLinkNameUserKo, &g_str_m32m64,
                              &arname, &lltdbRootpath, &lltcovmode, &pOriginalCmd}) {
        *text = input.line();
    }
    std::strcpy(g_lxprj->szCovDictPath, "/D");
    std::strcpy(g_lxprj->modName, "M");
    strLLTLD.clear();
    const fuzz::Texts expected = {"lltcc -qmr_current_prj_path " + lltdbRootpath +
                                      " -projectname LLTTEMP  -qmr_coverage_stub_mold " +
                                      lltcovmode + " " + pOriginalCmd,
                                  link_command(), archive_command()};
    GenerateCMD2LLTCC();
    GenerateCMD2LLTLD();
    GenerateCMD2AR();
    fuzz::same("forwarded commands", expected, {strLLTCC, strLLTLD, strLLTAR});
    return 0;
}
