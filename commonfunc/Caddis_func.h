// The common room: knows nothing of coverage, and everything above may use it.
//
// Convention: operations return int, 1 (or any nonzero value) for success and 0 for failure; a
// failing operation prints its own message, and callers often go on regardless.
//
// This header holds the two settings classes; the others, included here for those who link
// drivers against the library, are its table of contents.
#pragma once

#include "commonfunc/build_id.h"      // build id, local time stamps
#include "commonfunc/env.h"           // the rules for reading environment variables
#include "commonfunc/file_io.h"       // files read and written whole
#include "commonfunc/file_ops.h"      // existence, directories, removal
#include "commonfunc/ini_profile.h"   // INI profile files
#include "commonfunc/message.h"       // log lines, coloured lines, warnings
#include "commonfunc/path_name.h"     // path splitting, identifier form of names
#include "commonfunc/response_file.h" // words of response files
#include "commonfunc/shell.h"         // the only door to the shell
#include "commonfunc/text.h"          // bounded formatting, comparison without case

#include <map>
#include <string>
#include <vector>

/// Coverage modes of a project. Fields that this program does not set keep 0.
class _Caddis_CoverageItem
{
public:
    int gcovmode = 0;          ///< for drivers; not used here
    int cvgflag = 0;           ///< coverage flag; not set here
    int simplemode = 0;        ///< not set here
    int stubmode = 0;          ///< stub mode, from "qmr_coverage_stub_mold"
    int couterselect = 0;      ///< counter selection; not set here
    int seltmode = 0;          ///< not set here
    int cov_type = 0;          ///< 1 when a custom coverage type is configured
    char szCov_type[260] = {}; ///< name of the custom coverage type
};

/// Paths and names of a project; NUL-terminated, writers cut to the array's size.
class _Caddis_PrjItem
{
public:
    char szFileName[262] = {};    ///< not set here
    char szObjFile[262] = {};     ///< absolute path of the archive being built
    char szPrjPath[262] = {};     ///< project directory
    char szPrjName[262] = {};     ///< project name, see `LinuxPrjItem`
    char modName[262] = {};       ///< module name: the archive's stem
    char szCovDictPath[512] = {}; ///< root of the module's work area
    char szLLTTEMP[512] = {};     ///< absolute path of the project's "LLTTEMP" directory
};

/// The settings of the project being built, one object per process. The constructor sets the
/// defaults written here and "linuxcaddis" as the project name; `init_lltld` and
/// `Caddis_LD_GetCovDictPath` fill it in archive mode.
class LinuxPrjItem : public _Caddis_CoverageItem, public _Caddis_PrjItem
{
public:
    LinuxPrjItem();
    virtual ~LinuxPrjItem() = default;
    LinuxPrjItem(const LinuxPrjItem&) = delete;
    LinuxPrjItem& operator=(const LinuxPrjItem&) = delete;

    /// The single instance, created on the first call (and again after `ReleaseInstance`).
    static LinuxPrjItem* GetInstance();

    /// Destroys the instance and forgets it.
    static void ReleaseInstance();

    /// `m_uiUseVBS` from "USE_TUSK_VBS": 1 or 0 by its number when set and not empty, else
    /// unchanged.
    void set_vbsflag();

    /// 1 when "LLT_DISABLE_USRCFG" is set, not empty and non-zero, else 0.
    unsigned int isDisableUserConfig();

    int isOverlappedCompile = 0;   ///< 1 when one project tree is built for several platforms
    std::string platformToken;     ///< name of the variable that holds the platform name
    std::string platformName;      ///< value of that variable
    int TimerPolicy = 0;           ///< 0 or 1
    int TimeInterval = 0;          ///< read when `TimerPolicy` is 1; -1 is invalid
    int SignalPolicy = 0;          ///< 0 or 1
    int SignalNUM = 0;             ///< read when `SignalPolicy` is 1; -1 is invalid
    std::string lltcovRootpath;    ///< root path handed to the coverage runtime
    int m_port = 60000;            ///< port number, from the project's "tusk_g.ini"
    std::string m_str_macro;       ///< macro options; not set here
    std::string m_str_include;     ///< include options for the module's test code
    std::string strCompileCmd;     ///< the module's recorded compile command
    std::string strToolPath;       ///< directory of the running executable
    int xunit_type = -1;           ///< unit-test framework type; not set here
    unsigned int m_uiUseVBS = 0;   ///< see `set_vbsflag`
    bool isCovDictPathCut = false; ///< `szCovDictPath` was too long: never to be used on disk
};

/// The settings of this process; the same object as `LinuxPrjItem::GetInstance()`. Defined by the
/// program, set before `main`.
extern LinuxPrjItem* g_lxprj;

/// Bits of `CUsageContext::m_iLLTStatus`.
enum UsageStatus : unsigned int {
    USAGE_COVERAGE = 1,   ///< coverage
    USAGE_TEST_CASES = 2, ///< test cases
    USAGE_ATG = 4,        ///< automatic test generation
};

/// Which test features are on, and which compilers and options are left out of instrumented
/// builds; from the environment. Kept for link drivers: the wrapper's own commands do not ask it.
class CUsageContext
{
public:
    /// The single instance, constructed on first use, destroyed at exit; also in `m_pInstance`.
    static CUsageContext* GetInstance();

    /// Loads everything from the environment; only the first call in a process does anything.
    void GetContext();

    /// Derives the status bits from "USE_TUSK_COVERAGE", "USE_TUSK_TESTCASE" and "ATG_ENABLE".
    void Check_LLT_STATUS();
    void Add_LLT_STATUS(unsigned int bits) { m_iLLTStatus |= bits; }            ///< sets the bits
    void Disable_LLT_STATUS(unsigned int bits) { m_iLLTStatus &= ~bits; }       ///< clears the bits
    unsigned int IsEnableCVG() const { return m_iLLTStatus & USAGE_COVERAGE; }  ///< 0 when off
    unsigned int IsEnableTC() const { return m_iLLTStatus & USAGE_TEST_CASES; } ///< 0 when off
    unsigned int IsEnableATG() const { return m_iLLTStatus & USAGE_ATG; }       ///< 0 when off

    /// Appends the ":"-separated items of the raw string to its vector.
    void Set_LLT_EXCLUDE_CC();
    void Set_LLT_EXCLUDE_CCOPTION(); ///< likewise

    std::string str_LLT_EXCLUDE_CC;                       ///< value of "LLT_EXCLUDE_CC"
    std::vector<std::string> m_vtor_LLT_EXCLUDE_CC;       ///< compilers not to instrument
    std::string str_LLT_EXCLUDE_CCOPTION;                 ///< value of "LLT_EXCLUDE_CCOPTION"
    std::vector<std::string> m_vtor_LLT_EXCLUDE_CCOPTION; ///< compiler options to drop
    std::string str_LLT_EXCLUDE_CCOPTION_FORLINK;         ///< not loaded by this program
    std::vector<std::string> m_vtor_LLT_EXCLUDE_CCOPTION_FORLINK; ///< stays empty here
    std::string str_LLT_REPLACE_CCOPTION; ///< value of "LLT_REPLACE_CCOPTION"
    std::map<std::string, std::string> m_map_LLT_REPLACE_CCOPTION; ///< stays empty here
    std::string str_LLT_PLATFORM_CCOPTION; ///< value of "LLT_PLATFORM_CCOPTION"
    std::vector<std::vector<std::string>> m_vtor_vtor_LLT_PLATFORM_CCOPTION; ///< empty here
    int i_LLTLD_AVOID_SAME_NAME = 0;            ///< 1 when "LLTLD_AVOID_SAME_NAME" is non-zero
    unsigned int m_iLLTStatus = USAGE_COVERAGE; ///< `UsageStatus` bits
    void* m_HotpatchInfo = nullptr;             ///< hot-patch settings of a link driver

    static CUsageContext* m_pInstance; ///< null until `GetInstance`
};
