// The built program under limits, signals, and with members that cannot be read.
#include "tests/e2e/end_to_end.h"

namespace
{

#if defined(__SANITIZE_ADDRESS__)
constexpr char LITTLE_MEMORY[] = ""; // the sanitizer maps more than any limit
#else
constexpr char LITTLE_MEMORY[] = "ulimit -v 100000; ";
#endif

TEST_F(EndToEnd, AMemberThatCannotBeReadIsNamed)
{
    const std::string archive = "-artool ar -arsuffix .a ar rcs libm.a ";
    write_file("prepare",
               "mkdir p dir secret; echo g_QMRCovData_x >o.o; : >empty; mkfifo fifo; "
               "ln -s none dangling; ln -s loop loop; truncate -s 3G big; echo @fifo >resp");
    ASSERT_EQ(std::system("sh prepare"), 0);
    const struct {
        const char* what;
        std::string before, args;
        std::string warning; ///< none for the empty text
    } rows[] = {
        {"no file", "", "missing.o none/a.o dangling loop", ""},
        {"a directory, an empty file", "", "dir empty", ""},
        {"a pipe", "", "fifo", "fifo' is not inspected.*no regular file"},
        {"more than the memory", LITTLE_MEMORY, "big", ""},
        {"a response file", "", "@fifo", "fifo' is not read.*no regular file"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        const std::string program = row.before +
                                    "timeout 60 env isOverlappedCompile=0 TimerPolicy=0 "
                                    "SignalPolicy=0 lltcovRootpath= '" LLTWRAPPER "' ";
        write_file("run", program + archive + row.args + " >out 2>err");
        EXPECT_EQ(std::system("sh ./run"), 0);
        err = read_file("err");
        EXPECT_TRUE(warns(row.warning)) << err;
    }
}

TEST_F(EndToEnd, LongCommandsRunOnSmallStacksAndLeaveNothingWhenStopped)
{
    const std::string limits = "ulimit -s 64; ulimit -f 0; ", program = "'" LLTWRAPPER "' ";
    EXPECT_EQ(WEXITSTATUS(std::system((limits + program + "gcc -E a.c >/dev/null").c_str())), 0);
    EXPECT_EQ(WEXITSTATUS(std::system(
                  (program + "'ulimit -f 0; echo x >f' 2>/dev/null; echo $? >status").c_str())),
              0);
    // A word of 131,071 bytes and a second one run from a file, which says its own name.
    write_file("stop", "mkdir tmp; export TMPDIR=$PWD/tmp\n"
                       "long=$(head -c 131000 /dev/zero | tr '\\0' x)\n" +
                           program +
                           "'sleep 9 #' \"$long\" \"$long\" >/dev/null & pid=$!\n"
                           "for i in 1 2 3 4 5 6 7 8 9; do pgrep -P $pid >child && break; "
                           "sleep 0.1; done\nsleep 0.2; kill -$1 $pid; wait $pid; s=$?\n"
                           "kill $(cat child); ls tmp; rmdir tmp; exit $s\n");
    for (const int signal : {SIGHUP, SIGTERM, SIGKILL}) {
        const std::string command = "sh ./stop " + std::to_string(signal) + " >left 2>/dev/null";
        EXPECT_EQ(WEXITSTATUS(std::system(command.c_str())), 128 + signal);
        EXPECT_EQ(read_file("left"), "") << signal;
    }
}

TEST_F(EndToEnd, NoTextOfASettingIsRunOrBreaksAStep)
{
    const std::string settings =
        "qmr_coverage_stub_mold lltcovRootpath TimerPolicy SignalPolicy isOverlappedCompile "
        "SupportSameName PRODUCT_VERSION LLT_TargetName LLT_TargetName_KO lltwrapper_cfg "
        "LLTLD_AVOID_SAME_NAME LLT_DISABLE_SOCKET ATG_ENABLE USE_TUSK_COVERAGE USE_TUSK_TESTCASE "
        "USE_TUSK_VBS LLT_DISABLE_USRCFG LLT_DISABLE_VISIBILITY TUSK_ENABLE_m32m64 LLT_EXCLUDE_CC "
        "LLT_EXCLUDE_CCOPTION LLT_PLATFORM_CCOPTION LLT_REPLACE_CCOPTION PlatformToken TMPDIR TZ";
    write_file("o.o", "g_QMRCovData_x");
    write_file(
        "try",
        "export qmr_current_prj_path=$PWD/p; mkdir p\n"
        "long=$(head -c 131000 /dev/zero | tr '\\0' x)\n"
        "for name in " +
            settings +
            "; do for value in '' \"$long\" '\";`touch pwned`$(touch pwned)' "
            "99999999999 -1; do\n"
            "for step in 'ar rcs libm.a o.o' 'gcc -c a.c -o a.o' 'gcc -o prog a.o'; do\n"
            "env \"$name=$value\" '" LLTWRAPPER "' -artool ar -arsuffix .a $step >out 2>err\n"
            "case $? in [01]) ;; *) echo $name $step; tail -n 3 err ;; esac\n"
            "done; done; done >wrong; ls pwned >>wrong 2>/dev/null; sort -u log | wc -l >runs\n");
    EXPECT_EQ(std::system("sh ./try"), 0) << read_file("wrong");
    EXPECT_EQ(read_file("wrong"), "");
    EXPECT_NE(read_file("runs"), "0\n");
}

} // namespace
