#include "commonfunc/Caddis_func.h"
#include "lltld/linuxfunc.h"
#include "tests/fixture.h"

#include <filesystem>
#include <sstream>

using ProjectSettings = TestDir;

namespace
{
/// The output of the operation in a new environment of assignments, where the value "-" unsets.
std::string run(int (*operation)(), int expected, const std::string& changes)
{
    LinuxPrjItem::ReleaseInstance();
    g_lxprj = LinuxPrjItem::GetInstance();
    ::clearenv();
    std::istringstream words("PATH=/bin lltcovRootpath= qmr_coverage_stub_mold=3 PlatformToken=P " +
                             changes + " ");
    for (std::string name, value; getline(words, name, '=') && getline(words, value, ' ');) {
        value == "-" ? ::unsetenv(name.c_str()) : ::setenv(name.c_str(), value.c_str(), 1);
    }
    testing::internal::CaptureStdout();
    EXPECT_EQ(operation(), expected) << changes;
    return testing::internal::GetCapturedStdout();
}
} // namespace

TEST_F(ProjectSettings, APolicyErrorPrintsTheBlockAndStopsLoading)
{
    const struct {
        const char *what, *changes;
        const char *overlapped, *token, *name, *timer, *interval, *signal, *number;
    } rows[] = {
        {"overlapped neither 0 nor 1", "isOverlappedCompile=2", "2", "", "", "0", "0", "0", "0"},
        {"overlapped without a platform", "isOverlappedCompile=1 PlatformToken=-", "1", "", "", "0",
         "0", "0", "0"},
        {"the platform names an empty variable", "isOverlappedCompile=1 P=", "1", "P", "", "0", "0",
         "0", "0"},
        {"a timer policy neither 0 nor 1", "isOverlappedCompile=1 P=arm TimerPolicy=-1", "1", "P",
         "arm", "-1", "0", "0", "0"},
        {"a negative interval", "TimerPolicy=1 TimeInterval=-1", "0", "", "", "1", "-1", "0", "0"},
        {"a signal policy neither 0 nor 1", "TimerPolicy=1 TimeInterval=500 SignalPolicy=2", "0",
         "", "", "1", "500", "2", "0"},
        {"a negative signal", "SignalPolicy=1 SignalNUM=-1", "0", "", "", "0", "0", "1", "-1"},
        {"no root path", "SignalPolicy=1 SignalNUM=9 lltcovRootpath=-", "0", "", "", "0", "0", "1",
         "9"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        EXPECT_EQ(
            run(init_lltld, 0, row.changes),
            std::string("pls chk TUSK_init.sh cfg.   \nisOverlappedCompile:") + row.overlapped +
                "\nPlatformToken:      " + row.token + "\nPlatformName:       " + row.name +
                "\nTimerPolicy:        " + row.timer + "\nTimeInterval:       " + row.interval +
                "\nSignalPolicy:       " + row.signal + "\nSignalNUM:          " + row.number +
                "\nlltcovRootpath:     \n[TUSK-0x0B074905]: env error, please source "
                "TUSK_INIT.SH!\n");
    }
    EXPECT_EQ(g_lxprj->stubmode, 0); // read after the policies
}

TEST_F(ProjectSettings, TheProjectPathGivesDirectoryNameAndWorkArea)
{
    const struct {
        const char* what;
        std::string variable, path, name;
    } rows[] = {
        {"a project file of any case", "/u/p/demo.PRJ", "/u/p", "demo"},
        {"a directory", "/u/p", "/u/p", "linuxcaddis"},
        {"a directory that looks like a project file", "/u/my.prj.d/s", "/u", "my.prj"},
        {"no directory", "demo.prj", "demo", "linuxcaddis"},
        {"in the root directory", "/demo.prj", "", "demo"},
        {"a slash at the end", "/p/x.prj/", "/p", "x"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        run(Caddis_LD_Initial, 1,
            "isOverlappedCompile=1 P=arm qmr_current_prj_path=" + row.variable);
        EXPECT_EQ(g_lxprj->szPrjPath, row.path);
        EXPECT_EQ(g_lxprj->szPrjName, row.name);
        EXPECT_EQ(g_lxprj->szCovDictPath, row.path + "/arm");
    }
    EXPECT_EQ(run(Caddis_LD_Initial, 0, "SupportSameName=7"),
              "\n>>>>>>>>>>>>>       link    >>>>>>>>>>>>>>>>>>>>>>\n"
              "[lltld]:Cannot get the environment variable 'qmr_current_prj_path'!\n"
              "[TUSK-0x0B074900]: Cannot get the environment variable 'qmr_current_prj_path'!\n");
    EXPECT_EQ(g_iSupportSameName, 1);
    write_file("tusk_g.ini", "[CompilerSettings]\nport=7000\n");
    const std::string project = "SupportSameName=2 qmr_current_prj_path=" + dir + "/x.prj";
    run(Caddis_LD_GetCovDictPath, 1, project); // the file's place comes from loading alone
    EXPECT_EQ(g_lxprj->m_port, 60000);
    run(Caddis_LD_Initial, 1,
        project + " isOverlappedCompile=0 TimerPolicy=1 TimeInterval=-2 SignalPolicy=0");
    EXPECT_EQ(g_lxprj->TimeInterval, -2); // -1 alone is an error
    EXPECT_TRUE(g_lxprj->m_port == 7000 && g_lxprj->stubmode == 3 && g_iSupportSameName == 2);
}

TEST_F(ProjectSettings, TheWorkAreaIsCreatedUpToTheFirstFailureAndNeverUnderACutPath)
{
    const std::string part = "/" + std::string(199, 'n');
    for (const std::string& path : {part + part + part, part + part + "/x.prj"}) {
        run(Caddis_LD_Initial, 1, "SignalPolicy=2 qmr_current_prj_path=" + dir + path);
        EXPECT_EQ(CodeMeasure_CreateDir(), 0);
        EXPECT_TRUE(std::filesystem::is_empty(dir)) << path;
    }
    run(Caddis_LD_Initial, 1, "qmr_current_prj_path=w");
    EXPECT_EQ(CodeMeasure_CreateDir(), 1);
    for (const char* name : {"w/db", "w/log", "w/ini", "w/obj/before", "w/obj/after", "w/obj"}) {
        EXPECT_TRUE(std::filesystem::remove(name)) << name;
    }
    write_file("w/obj", "");
    testing::internal::CaptureStdout();
    EXPECT_EQ(CodeMeasure_CreateDir(), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Create Directory'w/obj/before' failed!\n");
}
