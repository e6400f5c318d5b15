// One function per piece of the generated source, in the order in which they stand in it. Paths
// and names go into C strings as they are; only the project name and the build id, which
// come from outside the build's files, are escaped.
//
// Kept: in archive mode the stub may call for `g_TUSKSockBindPort` without defining it; the
// program that links the library provides it.
#include "lltld/stub_source.h"

#include "commonfunc/Caddis_func.h"
#include "commonfunc/build_id.h"
#include "commonfunc/env.h"
#include "commonfunc/file_io.h"
#include "commonfunc/file_ops.h"
#include "commonfunc/ini_profile.h"
#include "commonfunc/text.h"
#include "contract/names.h"
#include "lltld/agent_config.h"
#include "lltld/c_literal.h"
#include "lltld/counter_mode.h"
#include "lltld/cov_paths.h"
#include "lltld/db_number.h"
#include "lltld/program_objects.h"
#include "lltld/stub_compile.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>

int g_noLinkCodemeasure = 0;

namespace
{

/// The second line says "code generated automatically by the coverage tool", in GBK.
constexpr char HEADER[] =
    "/*********************************************************\n"
    "\xb8\xb2\xb8\xc7\xc2\xca\xb9\xa4\xbe\xdf\xd7\xd4\xb6\xaf\xc9\xfa\xb3\xc9\xb5\xc4\xb4\xfa\xc2"
    "\xeb\n"
    "*********************************************************/\n"
    "\n"
    "#include <stdio.h> \n"
    "#include <stdlib.h> \n"
    "#include <errno.h> \n"
    "\n"
    "#ifdef __cplusplus\n"
    "extern \"C\" {\n"
    "#endif\n"
    "\n"
    "extern void* QMR_CreateCoverageListExt(const char *pModName, const char* covdbpath,\n"
    "    unsigned long iCount, int iClass);\n"
    "extern int QMR_AddCoverageBuf(void *pMod, unsigned int iFileId, char *pFileName,\n"
    "    unsigned int *pCovBuf, unsigned int iBufSize, unsigned int iInstSize);\n"
    "extern void QMR_DumpModuleCovdata(char* modulename); \n"
    "extern void TUSK_CovSetTimerPolicy(int time_interval);    \n"
    "extern void TUSK_CovSetSignalPolicy(int signal_no);   \n"
    "extern void TUSK_CovSetlltcovRootpath(const char* rootpath);   \n"
    "extern void TUSK_CovSetSupportVbsFlag(unsigned int uiFlag);   \n"
    "extern void TUSK_CovSetCompilePolicy(int overlappedCompile);   \n"
    "extern int  QMRGetTargetState();\n"
    "extern void QMRSetTargetState(int state);\n"
    "extern int  QMRInit(int iType, char *pProjName);\n"
    "extern int  ZKT_ServerInit(unsigned int iHostPort);\n"
    "\n";
static_assert(sizeof HEADER - 1 == 1061, "the header's text is fixed");

/// The module name as part of a C identifier; at most 259 bytes of it.
std::string module_symbol()
{
    std::string name = std::string(g_lxprj->modName).substr(0, 259);
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}

/// What only the non-archive form defines: the port variable and its setter.
void write_preamble(const LinuxPrjItem& prj, bool sockets, bool user_config, std::FILE* stub)
{
    if (sockets) {
        std::fprintf(stub, "\nstatic unsigned short g_TUSKSockBindPort   = %d;\n", prj.m_port);
    }
    if (user_config) {
        std::fputs("extern void TUSK_UserAgentConfig();\n", stub);
    }
    if (user_config && sockets) {
        std::fprintf(stub,
                     "%svoid TUSK_SetSockBindPort(unsigned short usPort)\n{\n"
                     "\tg_TUSKSockBindPort = usPort;\n}\n\n",
                     env_is_nonzero("LLT_DISABLE_VISIBILITY")
                         ? ""
                         : "__attribute__ ((visibility(\"hidden\"))) ");
    }
}

void write_start_function_head(const LinuxPrjItem& prj, std::FILE* stub)
{
    std::fprintf(stub, "\nvoid " TEST_LOADER_PREFIX "%s()\n{\n", module_symbol().c_str());
    std::fprintf(stub, "    TUSK_CovSetCompilePolicy(%d);\n", prj.isOverlappedCompile);
    if (prj.TimerPolicy == 1) {
        std::fprintf(stub, "    TUSK_CovSetTimerPolicy(%d);\n", prj.TimeInterval);
    }
    if (prj.SignalPolicy == 1) {
        std::fprintf(stub, "    TUSK_CovSetSignalPolicy(%d);\n", prj.SignalNUM);
    }
    std::fprintf(stub, "    TUSK_CovSetSupportVbsFlag(%d);\n", static_cast<int>(prj.m_uiUseVBS));
    if (!prj.lltcovRootpath.empty()) {
        std::fprintf(stub, "    TUSK_CovSetlltcovRootpath(\"%s\");\n", prj.lltcovRootpath.c_str());
    }
}

void write_list_creation(const LinuxPrjItem& prj, int elementcount, std::FILE* stub)
{
    std::fprintf(stub, "    void *pMod = QMR_CreateCoverageListExt(\"%s\", \"%s\", %d, %d);\n",
                 prj.modName, prj.szCovDictPath, elementcount, prj.stubmode + 1);
    std::fputs("    if(NULL == pMod)\n    {\n      return;\n    }\n\n", stub);
}

void write_runtime_start(const LinuxPrjItem& prj, bool sockets, bool user_config, std::FILE* stub)
{
    const std::string descriptor = "{\\\"projectname\\\":\\\"" +
                                   escape_for_json_in_c(prj.szPrjName) + "\\\",\\\"buid\\\":\\\"" +
                                   escape_for_json_in_c(TUSK_Build_GetBUID()) + "\\\"}";
    std::fprintf(stub,
                 "\t\tif(!QMRInit(0, (char*)\"%s\"))\n"
                 "\t\t{\n"
                 "\t\t\tprintf(\"Call QMRInit failed!\");\n"
                 "\t\t\treturn;\n"
                 "\t\t}\n"
                 "\n",
                 descriptor.c_str());
    std::fputs("\tif(!QMRGetTargetState())\n\t{\n", stub);
    if (user_config) {
        std::fputs("\t\tTUSK_UserAgentConfig();\n", stub);
    }
    if (sockets) {
        std::fprintf(
            stub,
            "\t\tif(!ZKT_ServerInit(g_TUSKSockBindPort))\n"
            "\t\t{\n\t\t\tprintf(\"[%s]Server start failed!\\n\");\n\t\t\treturn;\n\t\t}\n",
            escape_for_format_in_c(prj.szPrjName).c_str());
    }
    std::fputs("\t\tQMRSetTargetState(1);\n\t}\n\n    return ;\n}\n", stub);
}

void write_hooks(std::FILE* stub)
{
    const std::string module = module_symbol();
    const char* const name = module.c_str();
    std::fputs("#ifdef __cplusplus\n}\n#endif\n\n\n", stub);
    std::fprintf(stub,
                 "__attribute ((constructor)) void tusk_init_%s(void)\n{\n"
                 "    " TEST_LOADER_PREFIX "%s();\n    errno = 0;\n}\n",
                 name, name);
    std::fprintf(stub,
                 "__attribute ((destructor)) void tusk_fini_%s(void)\n{\n"
                 "    QMR_DumpModuleCovdata((char*)\"%s\");\n    errno = 0;\n}\n",
                 name, name);
}

std::string read_gcc_option(const char* key, const char* path)
{
    char value[1048] = {};
    read_profile_string("GccOption", key, value, sizeof value, nullptr, path);
    return value;
}

/// Writes stub and table; true when the stub is complete and can be compiled.
bool write_stub(const _SOURCEFILE_TAB& table, std::FILE* stub)
{
    Caddis_CovInitCodeFile_Func_Declare(stub);
    Caddis_LD_CovTypeIsCustom();
    if (!write_merged_table(table, stub) || LD_LinuxCompileCovInitCodeFile(table, stub) <= 0) {
        return false;
    }
    if (std::fflush(stub) != 0) {
        warn_not_written(stub_source_path());
        return false;
    }
    return true;
}

} // namespace

int Caddis_Coverage_CreateCovInitCodeFile()
{
    _SOURCEFILE_TAB table;
    if (CodeMeasure_Client_GetSourceFileTab(&table) == 0) {
        std::puts("Can not find coverage data base!");
        return 0;
    }
    File stub = open_file(stub_source_path(), "w+be");
    bool written = false;
    if (stub) {
        written = write_stub(table, stub.get());
    } else {
        std::puts("Can't create interface file \"__code_measure_stub_lib.c\"!");
        warn_not_written(stub_source_path());
    }
    release_table(table);
    stub.reset(); // the compiler reads it now
    return written ? LD_CompileCovInitCodeFile() : 0;
}

void Caddis_CovInitCodeFile_Func_Declare(std::FILE* stub)
{
    std::fputs(HEADER, stub);
}

void Caddis_LD_CovTypeIsCustom()
{
    const std::string ini = cut_program_directory(512) + "/InstCode.ini";
    const std::string gcc = read_gcc_option("GccOption", ini.c_str());
    const std::string gcc_c = read_gcc_option("GccCOption", ini.c_str());
    if (gcc.empty() || gcc_c.empty()) {
        return;
    }
    const std::string& options = gcc.find("-hcov_type") != std::string::npos ? gcc : gcc_c;
    const std::size_t at = options.find("-hcov_type");
    if (at == std::string::npos) {
        return;
    }
    // The option is followed by an equals sign and a double quote.
    const std::string type = options.substr(std::min(at + 12, options.size())).substr(0, 259);
    copy_bounded(g_lxprj->szCov_type, type.substr(0, type.find('"')));
    if (std::strstr(g_lxprj->szCov_type, "unsigned long") != nullptr) {
        g_lxprj->cov_type = 1;
    }
}

int LD_LinuxCompileCovInitCodeFile(_SOURCEFILE_TAB table, std::FILE* stub)
{
    const LinuxPrjItem& prj = *g_lxprj;
    const bool sockets = TUSK_CADDIS_IsDisableSocket() == 0;
    const bool user_config = g_iStaticLib == 0 && g_lxprj->isDisableUserConfig() == 0;
    if (g_iStaticLib == 0) {
        write_preamble(prj, sockets, user_config, stub);
    }
    write_start_function_head(prj, stub);
    write_list_creation(prj, table.elementcount, stub);
    LD_WriteCoverageInterface(table, stub);
    write_runtime_start(prj, sockets, user_config, stub);
    write_hooks(stub);
    return g_noLinkCodemeasure == 1 ? write_agent_config(table) : 1;
}

void LD_WriteCoverageInterface(_SOURCEFILE_TAB table, std::FILE* stub)
{
    const CounterMode mode = counter_mode(g_lxprj->stubmode);
    for (int i = 0; i < table.elementcount; ++i) {
        const _SOURCEFILE_OBJECT& record = table.objlist[i];
        const std::string name = source_name(record);
        std::fprintf(stub,
                     "    QMR_AddCoverageBuf(pMod, %d, (char*)\"%s\", "
                     "(unsigned int *)" ARRAY_PREFIX "%s, \n        %d, %d);\n",
                     i, name.c_str(), stem_of(name).c_str(), registered_size(mode, record.instnum),
                     record.instnum);
    }
}

int TUSK_CADDIS_IsDisableSocket()
{
    return env_int("LLT_DISABLE_SOCKET") == 1 ? 1 : 0;
}
