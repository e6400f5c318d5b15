// Every process-wide object of the program, in construction order. `parser` and `checkstate`
// write, the command builders and the dispatch read; nothing outlives the one wrapped command.
#pragma once

#include "commonfunc/Caddis_func.h"
#include "lltld/inst_file_list.h"  // instFileList
#include "lltld/program_objects.h" // tokens, g_iStaticLib

#include <set>
#include <string>
#include <vector>

/// The wrapped command as rebuilt by `parser`: every kept argument followed by a blank.
extern std::string pOriginalCmd;

/// Stem of the link output or archive, set by `checkstate`; `GenerateCMD2LLTLD` replaces it by
/// the identifier form of the target's name. Empty: no name was found.
extern std::string strLinkName;
/// The user's name for a kernel target, set by `checkstate` from "LLT_TargetName".
extern std::string strLinkNameUser;
/// The user's name for a kernel module, set by `checkstate` from "LLT_TargetName_KO".
extern std::string strLinkNameUserKo;

/// Object-file suffixes given with "-objsuffix".
extern std::set<std::string> vtor_objtypes;
/// Scratch iterator over `vtor_objtypes`.
extern std::set<std::string>::iterator itor_objtypes;
/// Object files of the wrapped command; nothing fills it.
extern std::vector<std::string> vtor_obj;

/// Mode flags, each 0 or 1, set by `checkstate`: compile, link, archive, run unchanged, final
/// kernel image link.
extern int lltcc_flag, lltld_flag, ar_flag, ori_flag, special_flag;

/// The commands that the builders of forward_cmd made: compile, link, archive. Empty: not built.
extern std::string strLLTCC, strLLTLD, strLLTAR;

/// Project root directory, from "qmr_current_prj_path"; empty when that is unset.
extern std::string lltdbRootpath;
/// Coverage stub mode, the text of "qmr_coverage_stub_mold"; empty when that is unset.
extern std::string lltcovmode;

/// Values of "-objsuffix", "-binsuffix", "-artool" (its file name) and "-arsuffix", set by
/// `parser`. Empty: option not given.
extern std::string strObjSuffix, strBinSuffix, strArTools, strArSuffix;

/// The archive argument as it stands on the command line, set by `checkstate`.
extern std::string arname;

/// "_m32" or "_m64" once such an option was kept by `parser`, else empty.
extern std::string g_str_m32m64;
