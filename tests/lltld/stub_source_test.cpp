// The generated stub, byte for byte under each switch, the agent's file, and the compilation.
#include "lltld/program_objects.h"
#include "tests/lltld/work_area.h"

namespace
{
const std::string STUB = "w/obj/__code_measure_stub_lib_my-mod",
                  SINGLE = "-o " + STUB + ".o -c " + STUB + ".c\n";

/// The text behind the header. Behind each "@" stands the letter of the switch that its part
/// depends on, or a blank.
const char* const TEXT =
    "@ unsigned int g_QMRCovData_A[1] = {0};\nunsigned int g_QMRCovData_b.x[2] = {0};\n"
    "unsigned int g_QMRCovData_nnnnnnnnnnnnnnnnnnnnnnnnnnnnnnn[1] = {0};\n@p\n"
    "static unsigned short g_TUSKSockBindPort   = 61000;\n"
    "@aextern void TUSK_UserAgentConfig();\n"
    "@h__attribute__ ((visibility(\"hidden\"))) @vvoid TUSK_SetSockBindPort(unsigned short usPo"
    "rt)\n{\n\tg_TUSKSockBindPort = usPort;\n}\n\n@ \nvoid ZJ_Start_my_mod()\n{\n"
    "    TUSK_CovSetCompilePolicy(1);\n    TUSK_CovSetTimerPolicy(5);\n"
    "    TUSK_CovSetSignalPolicy(9);\n    TUSK_CovSetSupportVbsFlag(1);\n"
    "    TUSK_CovSetlltcovRootpath(\"/cov\");\n"
    "    void *pMod = QMR_CreateCoverageListExt(\"my-mod\", \"w\", 3, 1);\n"
    "    if(NULL == pMod)\n    {\n      return;\n    }\n\n"
    "    QMR_AddCoverageBuf(pMod, 0, (char*)\"A.c\", (unsigned int *)g_QMRCovData_A, \n"
    "        4, 1);\n"
    "    QMR_AddCoverageBuf(pMod, 1, (char*)\"b.x.c\", (unsigned int *)g_QMRCovData_b.x, \n"
    "        8, 33);\n"
    "    QMR_AddCoverageBuf(pMod, 2, (char*)\"nnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnn\", (unsigned int"
    " *)g_QMRCovData_nnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnn, \n        0, 0);\n"
    "\t\tif(!QMRInit(0, (char*)\"{\\\"projectname\\\":\\\"demo\\\",\\\"buid\\\":\\\"B\\\"}\"))\n"
    "\t\t{\n\t\t\tprintf(\"Call QMRInit failed!\");\n\t\t\treturn;\n\t\t}\n\n"
    "\tif(!QMRGetTargetState())\n\t{\n@c\t\tTUSK_UserAgentConfig();\n"
    "@s\t\tif(!ZKT_ServerInit(g_TUSKSockBindPort))\n\t\t{\n"
    "\t\t\tprintf(\"[demo]Server start failed!\\n\");\n\t\t\treturn;\n\t\t}\n"
    "@ \t\tQMRSetTargetState(1);\n\t}\n\n    return ;\n}\n#ifdef __cplusplus\n}\n#endif\n\n\n"
    "__attribute ((constructor)) void tusk_init_my_mod(void)\n{\n    ZJ_Start_my_mod();\n"
    "    errno = 0;\n}\n__attribute ((destructor)) void tusk_fini_my_mod(void)\n{\n"
    "    QMR_DumpModuleCovdata((char*)\"my_mod\");\n    errno = 0;\n}\n";

/// Generates the stub of three sources in mode 0; what is printed.
std::string generate(int expected)
{
    const std::string n(32, 'n');
    g_lxprj->m_port = 61000, g_lxprj->m_uiUseVBS = 1, g_lxprj->lltcovRootpath = "/cov";
    g_lxprj->isOverlappedCompile = g_lxprj->TimerPolicy = g_lxprj->SignalPolicy = 1;
    g_lxprj->TimeInterval = 5, g_lxprj->SignalNUM = 9;
    copy_bounded(g_lxprj->szPrjName, "demo");
    copy_bounded(g_lxprj->modName, "my-mod");
    copy_bounded(g_szBuildID, "B");
    leave_record("A", 1);
    leave_record("b.x", 33);
    leave_record(n.substr(1), 0);
    write_file("w/CompileCmd.txt", "true");
    write_file("w/db/.tab", tab_record(7, "A.c") + tab_record(3, "b.x.c") + tab_record(4, n));
    return printed(expected, Caddis_Coverage_CreateCovInitCodeFile);
}
} // namespace

TEST_F(WorkArea, TheStubIsWrittenByteForByteUnderEachSwitch)
{
    const std::tuple<bool, std::string, const char*, std::string> rows[] = {
        {true, "LLT_DISABLE_SOCKET", "1", " "},
        {true, "LLT_DISABLE_SOCKET", "2", " s"},
        {false, "LLT_DISABLE_SOCKET", " 1x", " ac"},
        {false, "LLT_DISABLE_VISIBILITY", "-1", " pavcs"},
        {false, "LLT_DISABLE_VISIBILITY", "0", " pahvcs"},
        {false, "LLT_DISABLE_USRCFG", "2", " ps"},
        {false, "LLT_DISABLE_USRCFG", "", " pahvcs"}};
    std::vector<std::string> parts;
    strsplit_v(TEXT + 1, '@', parts);
    for (const auto& [archive, name, value, letters] : rows) {
        ::setenv(name.c_str(), value, 1);
        g_iStaticLib = archive;
        EXPECT_EQ(generate(1), "true  " + SINGLE);
        std::string expected;
        for (const std::string& part : parts) {
            expected += letters.find(part[0]) == letters.npos ? "" : part.substr(1);
        }
        EXPECT_EQ(read_file(STUB + ".c").substr(1061), expected) << name << "=" << value;
        ::unsetenv(name.c_str());
    }
    EXPECT_EQ(answer("head -c 1061 " + STUB + ".c | md5sum"),
              "fdb57dadb3cb2a811bd1512f6ccad89f  -\n");
}

TEST_F(WorkArea, AFailedStubIsNotCompiled)
{
    g_noLinkCodemeasure = 1;
    answer("mkdir w/db/db7 w/db/db3");
    EXPECT_EQ(generate(0), ""); // one numbered database is missing
    answer("mkdir w/db/db4; rm w/my-mod.ini");
    EXPECT_EQ(generate(1), "true  " + SINGLE);
    EXPECT_EQ(
        read_file("w/my-mod.ini"),
        "[usercfg]\nlltcovRootpath=/cov\nSignalNUM=9\nTimeInterval=5\nisOverlappedCompile=1\n\n"
        "[modcfg]\npara4=1\npara3=3\npara2=w\npara1=my-mod\n\n[InstInfo]\n"
        "info=7##A.c##g_QMRCovData_A##4##1;3##b.x.c##g_QMRCovData_b46x##8##33;"
        "4##nnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnn##g_QMRCovData_nnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnn##0##"
        "0\n");
    answer("rm " + STUB + ".c; mkdir " + STUB + ".c");
    EXPECT_EQ(generate(0), "Can't create interface file \"__code_measure_stub_lib.c\"!\n");
    answer("test `wc -c <w/db/.tab` = 840 && rm w/db/.tab"); // not yet truncated
    EXPECT_EQ(printed(0, Caddis_Coverage_CreateCovInitCodeFile),
              "File \"w/db/.tab\" open failed!\nCan not find coverage data base!\n");
}

TEST_F(WorkArea, TheCompileCommandTakesItsFormFromTokenAndUserCommands)
{
    copy_bounded(g_lxprj->modName, "my-mod");
    const std::string first = "a -o " + STUB + ".obj -c " + STUB + ".c\n",
                      second = STUB + ".o " + STUB + ".obj\n";
    const std::tuple<std::string, const char*, const char*, int, int, int, std::string> rows[] = {
        {"true", "", "", 0, 1, 1, "true  " + SINGLE},
        {"true", "", "", 2, 0, 1, "true " + SINGLE},
        {"true", "", "", 1, 1, 1, "true " + SINGLE},
        {"true", "", "", 1, 0, 1, "true  " + SINGLE},
        {"true\n", "", "", 0, 0, 0, "true\n  " + SINGLE},
        {"echo a", "echo u", "echo v", 2, 0, 1, first + "u -o " + second},
        {"echo a", "", "echo v", 0, 0, 1, first + "v " + second},
        {"false", "echo u", "", 0, 0, 0, ""},
        {"true", "", "false", 0, 0, 0, ""}};
    for (const auto& [recorded, user, user2, token, inner, result, out] : rows) {
        write_file("w/CompileCmd.txt", recorded + object_bytes("| rest"));
        copy_bounded(g_lltusercmd, user);
        copy_bounded(g_lltusercmd2, user2);
        iToken_wrapper = token, iToken_warpper_inner = inner;
        EXPECT_EQ(printed(result, LD_CompileCovInitCodeFile), out) << recorded << user << user2;
    }
    // A command over its bound, prefix and 1,023 bytes, is not run.
    copy_bounded(g_lltusercmd2, "");
    copy_bounded(g_lxprj->szCovDictPath, "." + std::string(250, '/') + "w");
    copy_bounded(g_lxprj->modName, std::string(260, 'm'));
    write_file("w/CompileCmd.txt", "touch ran;true");
    testing::internal::CaptureStderr();
    printed(0, LD_CompileCovInitCodeFile);
    EXPECT_EQ(testing::internal::GetCapturedStderr().rfind("lltwrapper: ", 0), 0U);
    std::filesystem::remove("w/CompileCmd.txt");
    EXPECT_NE(printed(0, LD_CompileCovInitCodeFile).find("w/CompileCmd.txt] error."),
              std::string::npos);
    EXPECT_FALSE(QMRFileExists("ran"));
}
