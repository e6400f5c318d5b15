// What the libraries read and the program owns.
#include "commonfunc/Caddis_func.h"
#include "commonfunc/env.h"
#include "lltld/inst_file_list.h"
#include "lltld/program_objects.h"  // IWYU pragma: keep: declares the rest
#include "toolset/common/process.h" // IWYU pragma: keep: declares program_name

const char* const program_name = "lltld";
LinuxPrjItem* g_lxprj = LinuxPrjItem::GetInstance();
_InstFileList instFileList;
int g_iStaticLib = 0; // the stub's form for programs
int iToken_wrapper = env_int("lltwrapper_cfg");
int iToken_warpper_inner = env_int("lltwrapper_cfg_inner");
