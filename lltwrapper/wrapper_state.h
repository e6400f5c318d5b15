// The objects of the command wrapping that live as long as the process, in construction order.
// Nothing outlives the one wrapped command.
#pragma once

#include <cstddef>
#include <set>
#include <string>
#include <vector>

/// Bytes of a base name that becomes a module name.
constexpr std::size_t MODULE_NAME_LENGTH = 255;

/// The wrapped command, every kept argument followed by a blank. Written by `parser`, read by the
/// command builders and the dispatch. Empty: the command held nothing but wrapper options.
extern std::string pOriginalCmd;

/// Stem of the link output or archive. Written by `checkstate`, replaced by the target's
/// identifier form in `GenerateCMD2LLTLD`, read there and by archive mode. Empty: no name found.
extern std::string strLinkName;
/// The user's name for a kernel target, from "LLT_TargetName"; for `GenerateCMD2LLTLD`. Empty:
/// no entry matched.
extern std::string strLinkNameUser;
/// The same for a kernel module, from "LLT_TargetName_KO".
extern std::string strLinkNameUserKo;

/// Object-file suffixes of "-objsuffix". Written by `parser`; for drivers. Empty: not given.
extern std::set<std::string> vtor_objtypes;
/// Scratch iterator over `vtor_objtypes`; nothing uses it.
extern std::set<std::string>::iterator itor_objtypes;
/// Members of the archive that hold coverage symbols. Written by `checkstate`, read when the
/// archive step fails.
extern std::vector<std::string> vtor_obj;

/// Mode flags: compile, link, archive, run unchanged, final kernel image link. `checkstate` sets
/// one of them to 1, the dispatch reads them. All 0: not classified yet.
extern int lltcc_flag, lltld_flag, ar_flag, ori_flag, special_flag;

/// The forwarded compile, link and archive command. Written by the builders of forward_cmd, read
/// by the dispatch. Empty: not built, and for a link also that there is no driver or no name.
extern std::string strLLTCC, strLLTLD, strLLTAR;

/// Project root directory and text of "qmr_coverage_stub_mold". Written by `read_project`, read by
/// the builders. Empty: the variable is unset.
extern std::string lltdbRootpath, lltcovmode;

/// Values of "-objsuffix", "-binsuffix", "-artool" (its file name) and "-arsuffix". Written by
/// `parser`; `checkstate` reads the last two. Empty: not given, so no archiver, no archive.
extern std::string strObjSuffix, strBinSuffix, strArTools, strArSuffix;

/// The archive argument as it stands on the command line. Written by `checkstate`, read by
/// `GenerateCMD2AR`. Empty: no archive was named.
extern std::string arname;

/// "_m32" or "_m64" once `parser` kept such an option; for the link name. Empty: none was seen.
extern std::string g_str_m32m64;
