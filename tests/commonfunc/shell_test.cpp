#include "commonfunc/shell.h"
#include "tests/fixture.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <sys/resource.h>
#include <unistd.h>

using Shell = TestDir;

namespace
{

void nothing(int /*signal*/) {}

/// The lines of a process's state about blocked and ignored signals.
std::string signals_of(const std::string& state)
{
    const std::size_t begin = state.find("SigBlk:");
    return state.substr(begin, state.find("SigCgt:") - begin);
}

} // namespace

TEST_F(Shell, WordsReachTheToolAsTheNameTheyWereMadeOf)
{
    const std::string plain = "AZaz09_-./+,:=@%\x80\xFF", odd = "it's;&|<>\"\n$(x)`x`*?\\";
    EXPECT_EQ(shell_word(plain), plain);
    EXPECT_EQ(shell_word("a b") + shell_word("~") + shell_word("-rf"), "'a b''~'./-rf");
    run_shell("printf '<%s>' " + shell_word(odd) + shell_word("-" + odd) + " >out", Flush::both);
    EXPECT_EQ(read_file("out"), "<" + odd + "./-" + odd + ">");
}

TEST_F(Shell, ALongCommandGivesTheSameResultAndLeavesNoFile)
{
    ::setenv("TMPDIR", dir.c_str(), 1);
    for (const std::size_t size : {99U, 131071U, 131072U, 999999U}) {
        const std::string start = "printf \"$# $((6*7))\"; exit 3 #", kill = "kill -9 $$ #";
        testing::internal::CaptureStdout();
        EXPECT_EQ(run_shell(start + std::string(size - start.size(), 'x'), Flush::both), 3 << 8);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), "0 42") << size;
        EXPECT_EQ(run_shell(kill + std::string(size - kill.size(), 'x'), Flush::both), SIGKILL);
        EXPECT_TRUE(std::filesystem::is_empty(dir)) << size;
    }
}

TEST_F(Shell, WorkMeanwhileIsDoneWhileTheCommandRuns)
{
    const auto make = [] { write_file("made", ""); };
    EXPECT_EQ(run_helper("for i in $(seq 500); do [ -e made ] && exit 3; sleep 0.02; done", make),
              3 << 8);
}

TEST_F(Shell, StatusIsThatOfAShellAndAnInterruptedHelperEndsTheProgram)
{
    EXPECT_EQ(exit_status_of(SIGSEGV | 0x80), 139); // with a core file
    EXPECT_EQ(exit_status_of(-1), 127);
    EXPECT_EXIT(run_helper("kill -INT $$"), testing::KilledBySignal(SIGINT), "");
}

TEST_F(Shell, TheCommandHasTheCallersSignalsAndTheCallerIsNotDisturbed)
{
    sigset_t user, before;
    ::sigemptyset(&user);
    ::sigaddset(&user, SIGUSR1);
    ::sigprocmask(SIG_SETMASK, &user, &before);
    for (const sighandler_t handler : {SIG_DFL, SIG_IGN, &nothing}) {
        std::signal(SIGINT, handler);
        std::signal(SIGQUIT, handler);
        const std::string own = signals_of(read_file("/proc/self/status"));
        EXPECT_EQ(run_shell("exec cat /proc/self/status >state", Flush::both), 0);
        EXPECT_EQ(signals_of(read_file("state")), own);
        // SIGCHLD (17) is blocked like SIGUSR1 (10), and SIGINT (2) and SIGQUIT (3) are ignored.
        EXPECT_EQ(run_shell("for i in $(seq 500); do\n"
                            "[ $(grep -cE 'SigBlk:.*010200$|SigIgn:.*[67ef]$' /proc/$PPID/status) "
                            "= 2 ] && kill -INT $PPID && kill -QUIT $PPID && exit 3\n"
                            "sleep 0.02; done",
                            Flush::both),
                  3 << 8);
        EXPECT_EQ(signals_of(read_file("/proc/self/status")), own);
        EXPECT_EQ(std::signal(SIGINT, SIG_DFL), handler);
        EXPECT_EQ(std::signal(SIGQUIT, SIG_DFL), handler);
    }
    ::sigprocmask(SIG_SETMASK, &before, nullptr);
}

TEST_F(Shell, WithoutAProcessThereIsNoStatus)
{
    const auto run_without_process = [] {
        const struct rlimit none = {0, 0};
        // Root has no limit; where it cannot become another user, nothing is shown.
        const bool limited =
            (::geteuid() != 0 || ::setuid(65534) == 0) && ::setrlimit(RLIMIT_NPROC, &none) == 0;
        std::_Exit(limited ? run_shell("exit 0", Flush::none) : 255);
    };
    EXPECT_EXIT(run_without_process(), testing::ExitedWithCode(255), "");
}
