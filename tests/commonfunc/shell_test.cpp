#include "commonfunc/shell.h"
#include "tests/fixture.h"

#include <csignal>
#include <filesystem>

using Shell = TestDir;

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

TEST_F(Shell, StatusIsThatOfAShellAndAnInterruptedHelperEndsTheProgram)
{
    EXPECT_EQ(exit_status_of(SIGSEGV | 0x80), 139); // with a core file
    EXPECT_EQ(exit_status_of(-1), 127);
    EXPECT_EXIT(run_helper("kill -INT $$"), testing::KilledBySignal(SIGINT), "");
}
