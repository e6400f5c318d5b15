// The definitions stand in the order in which static initialisation constructs them.
#include "lltwrapper/wrapper_state.h"

#include "commonfunc/Caddis_func.h"
#include "lltld/inst_file_list.h"

std::string pOriginalCmd;
std::string strLinkName;
std::string strLinkNameUser;
std::string strLinkNameUserKo;
std::set<std::string> vtor_objtypes;
std::set<std::string>::iterator itor_objtypes;
std::vector<std::string> vtor_obj;
int lltcc_flag = 0, lltld_flag = 0, ar_flag = 0, ori_flag = 0, special_flag = 0;
int iToken_wrapper = 0;
int iToken_warpper_inner = 0;
std::string strLLTCC, strLLTLD, strLLTAR;
std::string lltdbRootpath, lltcovmode;
std::string strObjSuffix, strBinSuffix, strArTools, strArSuffix;
std::string arname;
LinuxPrjItem* g_lxprj = LinuxPrjItem::GetInstance();
std::string g_str_m32m64;
int g_iStaticLib = 0;
_InstFileList instFileList;
