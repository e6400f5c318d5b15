// The generated stub against whole files under each switch, the agent's file, and the compilation.
#include "lltld/program_objects.h"
#include "tests/lltld/work_area.h"

#include <algorithm>
#include <map>
#include <sstream>

using StubSource = WorkArea;

namespace
{
const std::string STUB = "w/obj/__code_measure_stub_lib_my-mod-1",
                  SINGLE = "-o " + STUB + ".o -c " + STUB + ".c\n";

/// Sets what a switch names: a setting, a source and its points (NAME.c:33), or a variable of the
/// environment. Sources go into the table.
void apply(const std::string& name, const std::string& value, std::string& table)
{
    const std::map<std::string, int*> numbers = {{"archive", &g_iStaticLib},
                                                 {"mode", &g_lxprj->stubmode},
                                                 {"TimerPolicy", &g_lxprj->TimerPolicy},
                                                 {"SignalPolicy", &g_lxprj->SignalPolicy}};
    const std::size_t points = name.find(':');
    if (points != name.npos) {
        const std::string source = name.substr(0, points);
        // Records are found by what stands before the last full stop, 31 bytes at most.
        leave_record(source.substr(0, std::min<std::size_t>(source.rfind('.'), 31)),
                     std::stoi(name.substr(points + 1)));
        table += tab_record(static_cast<int>(table.size() / 280) * 2 + 3, source);
    } else if (numbers.count(name) != 0) {
        *numbers.at(name) = std::stoi(value);
    } else if (name == "type") {
        copy_bounded(g_lxprj->szCov_type, value);
    } else if (name == "rootpath") {
        g_lxprj->lltcovRootpath = value;
    } else {
        ::setenv(name.c_str(), value.c_str(), 1);
    }
}

/// A module "my-mod-1" of project "demo" with the switches "// NAME=VALUE SOURCE:POINTS ...".
void prepare(const std::string& switches)
{
    g_lxprj->m_port = 61000, g_lxprj->m_uiUseVBS = 1, g_lxprj->isOverlappedCompile = 1;
    g_lxprj->TimeInterval = 5, g_lxprj->SignalNUM = 9;
    g_lxprj->TimerPolicy = g_lxprj->SignalPolicy = 0;
    g_lxprj->lltcovRootpath = "";
    copy_bounded(g_lxprj->szCov_type, "");
    copy_bounded(g_lxprj->szPrjName, "demo");
    copy_bounded(g_lxprj->modName, "my-mod-1");
    copy_bounded(g_szBuildID, "B");
    write_file("w/CompileCmd.txt", "true");
    std::string table;
    std::istringstream words(switches.substr(2));
    for (std::string word; words >> word;) {
        const std::size_t equals = word.find('=');
        apply(word.substr(0, equals), equals == word.npos ? "" : word.substr(equals + 1), table);
    }
    write_file("w/db/.tab", table);
}

/// The stub that is generated with these switches.
std::string stub_with(const std::string& switches)
{
    prepare(switches);
    const std::string out = printed(1, Caddis_Coverage_CreateCovInitCodeFile);
    EXPECT_NE(out.find(SINGLE), out.npos) << out;
    return read_file(STUB + ".c");
}

/// The lines that a text has instead of those of another, "-" before what goes, "+" before what
/// comes.
std::string changed_lines(const std::string& from, const std::string& to)
{
    write_file("from", from);
    write_file("to", to);
    return answer("diff -d --old-line-format=-%L --new-line-format=+%L --unchanged-line-format= "
                  "from to; test $? = 1");
}
} // namespace

TEST_F(StubSource, IsTheWholeFileAndEachSwitchChangesItsLines)
{
    const std::string file = read_file(GOLDEN_STUB), switches = file.substr(0, file.find('\n')),
                      golden = file.substr(switches.size() + 1);
    EXPECT_EQ(stub_with(switches), golden);

    const std::string n(32, 'n'),
        array = "unsigned int g_QMRCovData_", add = "    QMR_AddCoverageBuf(pMod, ",
        cast = "(unsigned int *)g_QMRCovData_",
        list = "    void *pMod = QMR_CreateCoverageListExt(\"my-mod-1\", \"w\", ", blank = "-\n",
        port = "-static unsigned short g_TUSKSockBindPort   = 61000;\n",
        agent = "-extern void TUSK_UserAgentConfig();\n",
        setter = "void TUSK_SetSockBindPort(unsigned short usPort)\n",
        hidden = "-__attribute__ ((visibility(\"hidden\"))) " + setter,
        no_setter = hidden + "-{\n-\tg_TUSKSockBindPort = usPort;\n-}\n" + blank,
        no_call = "-\t\tTUSK_UserAgentConfig();\n",
        no_server = "-\t\tif(!ZKT_ServerInit(g_TUSKSockBindPort))\n-\t\t{\n"
                    "-\t\t\tprintf(\"[demo]Server start failed!\\n\");\n"
                    "-\t\t\treturn;\n-\t\t}\n";
    const struct {
        const char* what;
        std::string switches, changes; ///< to the golden stub
    } rows[] = {
        {"a visible setter", "A.c:33 LLT_DISABLE_VISIBILITY=-1", hidden + "+" + setter},
        {"no sockets, no sources", "LLT_DISABLE_SOCKET=1x",
         "-" + array + "A[2] = {0};\n" + blank + port + no_setter + "-" + list + "1, 5);\n+" +
             list + "0, 5);\n-" + add + "0, (char*)\"A.c\", " + cast + "A, \n-        132, 33);\n" +
             no_server},
        {"no user configuration, a type, arrays elsewhere",
         "mode=8 type=long LLT_DISABLE_USRCFG=2 A.c:33",
         "-" + array + "A[2] = {0};\n+extern unsigned long g_QMRCovData_A[];\n" + agent +
             no_setter + "-" + list + "1, 5);\n+" + list + "1, 9);\n" + no_call},
        {"an archive with sockets, policies that are not 1",
         "archive=1 A.c:33 TimerPolicy=2 SignalPolicy=2 rootpath= LLT_DISABLE_SOCKET=2",
         port + agent + no_setter + blank + no_call},
        {"an archive of three sources with policies",
         "archive=1 mode=0 A.c:33 b.x.c:1 " + n +
             ":0 TimerPolicy=1 SignalPolicy=1 rootpath=/cov LLT_DISABLE_SOCKET=1",
         blank + port + agent + no_setter + "+" + array + "b.x[1] = {0};\n+" + array + n.substr(1) +
             "[1] = {0};\n" +
             "+    TUSK_CovSetTimerPolicy(5);\n+    TUSK_CovSetSignalPolicy(9);\n" + "-" + list +
             "1, 5);\n+    TUSK_CovSetlltcovRootpath(\"/cov\");\n+" + list +
             "3, 1);\n-        132, 33);\n+        8, 33);\n+" + add + "1, (char*)\"b.x.c\", " +
             cast + "b.x, \n+        4, 1);\n+" + add + "2, (char*)\"" + n + "\", " + cast + n +
             ", \n+        0, 0);\n" + no_call + no_server},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        ::clearenv();
        ::setenv("PATH", "/usr/bin:/bin", 1);
        EXPECT_EQ(changed_lines(golden, stub_with("// archive=0 mode=4 " + row.switches)),
                  row.changes);
    }
}

TEST_F(StubSource, ThatFailedIsNotCompiled)
{
    const std::string n(32, 'n');
    const auto generate = [] { return Caddis_Coverage_CreateCovInitCodeFile(); };
    const auto again = [&] {
        prepare("// mode=0 A.c:1 b.x.c:33 " + n +
                ":0 TimerPolicy=1 SignalPolicy=1 rootpath=/cov LLT_DISABLE_SOCKET=1");
    };
    g_noLinkCodemeasure = 1;
    again();
    answer("mkdir w/db/db3 w/db/db7");
    EXPECT_EQ(printed(0, generate), ""); // one numbered database is missing
    answer("mkdir w/db/db5; rm w/my-mod-1.ini");
    again();
    EXPECT_EQ(printed(1, generate), "true  " + SINGLE);
    EXPECT_EQ(read_file("w/my-mod-1.ini"),
              "[usercfg]\nlltcovRootpath=/cov\nSignalNUM=9\nTimeInterval=5\n"
              "isOverlappedCompile=1\n\n"
              "[modcfg]\npara4=1\npara3=3\npara2=w\npara1=my-mod-1\n\n[InstInfo]\n"
              "info=3##A.c##g_QMRCovData_A##4##1;5##b.x.c##g_QMRCovData_b46x##8##33;7##" +
                  n + "##g_QMRCovData_" + n + "##0##0\n");
    answer("rm w/my-mod-1.ini");
    prepare("// mode=2 TimerPolicy=2 SignalPolicy=2 rootpath=");
    printed(1, generate);
    EXPECT_EQ(read_file("w/my-mod-1.ini"),
              "[usercfg]\nisOverlappedCompile=1\n\n[modcfg]\npara4=3\npara3=0\npara2=w\n"
              "para1=my-mod-1\n\n[InstInfo]\ninfo=\n");
    again();
    answer("rm " + STUB + ".c; mkdir " + STUB + ".c");
    EXPECT_EQ(printed(0, generate), "Can't create interface file \"__code_measure_stub_lib.c\"!\n");
    answer("test `wc -c <w/db/.tab` = 840 && rm w/db/.tab"); // not yet truncated
    EXPECT_EQ(printed(0, generate),
              "File \"w/db/.tab\" open failed!\nCan not find coverage data base!\n");
}

TEST_F(StubSource, CompileCommandTakesItsFormFromTokenAndUserCommands)
{
    copy_bounded(g_lxprj->modName, "my-mod-1");
    const std::string first = "a -o " + STUB + ".obj -c " + STUB + ".c\n",
                      second = STUB + ".o " + STUB + ".obj\n";
    const struct {
        const char* what;
        std::string recorded; ///< content of "CompileCmd.txt"
        const char *user, *user2;
        int token, inner; ///< "lltwrapper_cfg", and that of the tools that are run
        int result;
        std::string out;
    } rows[] = {
        {"one command", "true", "", "", 0, 1, 1, "true  " + SINGLE},
        {"kernel", "true", "", "", 2, 0, 1, "true " + SINGLE},
        {"kernel image and kernel inside", "true", "", "", 1, 1, 1, "true " + SINGLE},
        {"kernel image alone", "true", "", "", 1, 0, 1, "true  " + SINGLE},
        {"a line end stays", "true\n", "", "", 0, 0, 0, "true\n  " + SINGLE},
        {"the first user command", "echo a", "echo u", "echo v", 2, 0, 1, first + "u -o " + second},
        {"the second user command", "echo a", "", "echo v", 0, 0, 1, first + "v " + second},
        {"a failed compilation ends it", "false", "echo u", "", 0, 0, 0, ""},
        {"a failed user command", "true", "", "false", 0, 0, 0, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        write_file("w/CompileCmd.txt", row.recorded + object_bytes("| rest"));
        copy_bounded(g_lltusercmd, row.user);
        copy_bounded(g_lltusercmd2, row.user2);
        iToken_wrapper = row.token, iToken_warpper_inner = row.inner;
        EXPECT_EQ(printed(row.result, LD_CompileCovInitCodeFile), row.out);
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
