// The generated stub against whole files under each switch, the agent's file, and the compilation.
#include "lltld/program_objects.h"
#include "tests/lltld/work_area.h"

#include <algorithm>
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
    const std::size_t points = name.find(':');
    if (points != name.npos) {
        const std::string source = name.substr(0, points);
        // Records are found by what stands before the last full stop, 31 bytes at most.
        leave_record(source.substr(0, std::min<std::size_t>(source.rfind('.'), 31)),
                     std::stoi(name.substr(points + 1)));
        table += tab_record(static_cast<int>(table.size() / 280) * 2 + 3, source);
    } else if (name == "archive") {
        g_iStaticLib = std::stoi(value);
    } else if (name == "mode") {
        g_lxprj->stubmode = std::stoi(value);
    } else if (name == "type") {
        copy_bounded(g_lxprj->szCov_type, value);
    } else if (name == "rootpath") {
        g_lxprj->lltcovRootpath = value;
    } else if (name == "TimerPolicy") {
        g_lxprj->TimerPolicy = std::stoi(value);
    } else if (name == "SignalPolicy") {
        g_lxprj->SignalPolicy = std::stoi(value);
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

/// The names of the golden stubs, without ".c".
std::vector<std::string> golden_stubs()
{
    std::vector<std::string> names;
    for (const auto& file : std::filesystem::directory_iterator(GOLDEN_STUBS)) {
        if (file.path().extension() == ".c") {
            names.push_back(file.path().stem());
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

class GoldenStub : public WorkArea, public testing::WithParamInterface<std::string>
{
};
} // namespace

TEST_P(GoldenStub, IsGeneratedByTheSwitchesOfItsFirstLine)
{
    const std::string golden = read_file(GOLDEN_STUBS "/" + GetParam() + ".c");
    const std::size_t first_line = golden.find('\n');
    ASSERT_NE(first_line, golden.npos);
    prepare(golden.substr(0, first_line));
    const std::string out = printed(1, Caddis_Coverage_CreateCovInitCodeFile);
    EXPECT_NE(out.find(SINGLE), out.npos) << out;
    EXPECT_EQ(read_file(STUB + ".c"), golden.substr(first_line + 1));
}

INSTANTIATE_TEST_SUITE_P(Files, GoldenStub, testing::ValuesIn(golden_stubs()),
                         [](const auto& stub) { return stub.param; });

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
