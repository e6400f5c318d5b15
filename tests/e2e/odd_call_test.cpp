// Calls that no shell makes by itself, words that are empty or hold a line end, and tools that die.
#include "tests/e2e/end_to_end.h"

#include <unistd.h>

namespace
{

TEST_F(EndToEnd, ACallWithoutAnyWordIsAUsageError)
{
    const pid_t child = ::fork();
    if (child == 0) {
        char* none[] = {nullptr};
        ::freopen("out", "w", stdout);
        ::freopen("err", "w", stderr);
        ::execve(LLTWRAPPER, none, environ);
        ::_exit(99);
    }
    int status = -1;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(read_file("out"), "error usage\n");
}

TEST_F(EndToEnd, EmptyWordsAndLineEndsReachTheShellAsTheyAre)
{
    const std::string root = dir + "/p",
                      cc = "[lltcc][-qmr_current_prj_path][" + root +
                           "][-projectname][LLTTEMP][-qmr_coverage_stub_mold][2]";
    const struct {
        const char* what;
        std::string args, calls;
        int status;
        std::string warning;
    } rows[] = {
        {"an empty word alone", "''", "", 0, ""},
        {"an empty output of a compile", "gcc -c a.c -o ''", cc + "[gcc][-c][a.c][-o]\n", 0, ""},
        {"an empty output of a link", "gcc -o ''", "", 0, "nothing is run for this link"},
        {"an archive without a name", "-artool ar -arsuffix .a ar rcs ''", "", 1, ""},
        {"an empty archiver", "-artool '' -arsuffix '' ar rcs ''", "[ar][rcs]\n", 0, ""},
        {"a line end ends the command", "gcc -E 'a\ngcc' b", "[gcc][-E][a]\n[gcc][b]\n", 0, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        EXPECT_EQ(run("qmr_current_prj_path=" + root, row.args), row.status);
        EXPECT_EQ(calls, row.calls);
        EXPECT_TRUE(row.status != 0 || warns(row.warning)) << err;
    }
    EXPECT_NE(::access("p", F_OK), 0); // nothing was made for the archive without a name
}

TEST_F(EndToEnd, TheSignalThatKilledAToolIsNamed)
{
    for (int signal = 1; signal < 32; ++signal) {
        const bool stops = signal >= SIGSTOP && signal <= SIGTTOU;
        if (stops || signal == SIGCHLD || signal == SIGCONT || signal == SIGURG ||
            signal == SIGWINCH) {
            continue; // no tool dies of them
        }
        SCOPED_TRACE(signal);
        const std::string env = "RECORDER_END=-" + std::to_string(signal);
        EXPECT_EQ(run(env, "gcc -c a.c"), 1);
        EXPECT_EQ(run(env, "gcc -E a.c"), 0);
        EXPECT_NE(err.find("failed with " + std::to_string(128 + signal) + ":"), err.npos) << err;
        EXPECT_EQ(run(env + " LLTWRAPPER_EXACT_STATUS=1", "gcc -E a.c"), 128 + signal);
    }
}

} // namespace
