// The built program as a process: its exit status, its log, and what it withstands.
#include "tests/e2e/end_to_end.h"

namespace
{

TEST_F(EndToEnd, TheExitStatusDependsOnTheMode)
{
    const std::string compile = "gcc -c a.c", plain = "gcc -E a.c",
                      image = "gcc -o x/.tmp_vmlinux2";
    const std::string link = "gcc -o app", exact = "LLTWRAPPER_EXACT_STATUS=1 RECORDER_END=";
    const struct {
        const char* what;
        std::string env, args;
        int status;
        std::string warning;
    } rows[] = {
        {"a failed compile", "RECORDER_END=77", compile, 1, ""},
        {"a killed compile", "RECORDER_END=-9", compile, 1, ""},
        {"a failed link", "RECORDER_END=77", link, 1, ""},
        {"a failure is hidden", "RECORDER_END=77", plain, 0, "77"},
        {"a missing tool is hidden", "RECORDER_END=127", plain, 0, "127"},
        {"a killed tool is hidden", "RECORDER_END=-9", plain, 0, "137"},
        {"of a kernel image, without its stub", "RECORDER_END=77 lltwrapper_cfg=1", image, 0,
         "(?=.*_tmp_vmlinux1).*77"},
        {"not exact", "RECORDER_END=77 LLTWRAPPER_EXACT_STATUS=0", plain, 0, "77"},
        {"the shell itself dies", "", "'kill -9 $$'", 9, ""},
        {"a compile, exact", exact + "77", compile, 77, ""},
        {"a link, exact", exact + "127", link, 127, ""},
        {"a killed tool, exact", exact + "-9", plain, 137, ""},
        {"a killed shell, exact", exact, "'kill -9 $$'", 137, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        EXPECT_EQ(run(row.env, row.args), row.status);
        EXPECT_TRUE(warns(row.warning)) << err;
    }
}

TEST_F(EndToEnd, ALogTakesTheProgramsLinesAndTheToolsKeepTheOutput)
{
    const struct {
        const char* what;
        std::string env, args, out, log;
    } rows[] = {
        {"compile", "", "gcc -c a.c", "lltcc ran\n", "lltcc cmd:\n .* \n"},
        {"link", "", "gcc -o app", "lltld ran\n", "lltld cmd:\n .* \n"},
        {"unchanged", "", "gcc -E a.c", "gcc ran\n", "gcc -E a.c "},
        {"kernel image", "lltwrapper_cfg=1", "gcc -o x/.tmp_vmlinux2", "gcc ran\n",
         "special_cmd:: .*\n"},
    };
    std::string all;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        run(row.env + " LLTWRAPPER_LOG=own.log", row.args);
        EXPECT_EQ(out, row.out);
        all += row.log;
        EXPECT_TRUE(std::regex_match(read_file("own.log"), std::regex(all)))
            << read_file("own.log");
    }
    run("LLTWRAPPER_LOG=nowhere/own.log", "gcc -E a.c");
    EXPECT_EQ(out, "gcc -E a.c gcc ran\n");
    EXPECT_TRUE(warns(".*nowhere/own.log")) << err;
}

TEST_F(EndToEnd, SomeCallsRunNothing)
{
    const std::string nothing = "lltld cmd:\n  \n", own = "lltwrapper: .*\n";
    const std::string nameless = "lltwrapper error, NULL projectname\n" + nothing;
    const std::string banner = "\\[TUSK LINUX CADDIS\\]\nVersion: [^\n]{1,60}\nBuild at: "
                               "\\d\\d:\\d\\d:\\d\\d [A-Z][a-z]{2} [ \\d]\\d \\d{4}\n";
    const struct {
        const char* what;
        std::string env, args, out, hint; ///< patterns of both outputs
    } rows[] = {
        {"no argument", "", "", "error usage\n", ".*\n.*\n"},
        {"-v", "", "-v", banner, ""},
        {"-V with a command", "", "-V gcc -c a.c", banner, ""},
        {"--version", "", "--version", banner, ""},
        {"--help", "", "--help", "[^]*lltwrapper[^]*\n", ""},
        {"an option alone", "", "-objsuffix .o", "", ""},
        {"driver 5", "lltwrapper_cfg=5", "gcc -o app", nothing, own},
        {"beyond the drivers", "lltwrapper_cfg=9", "gcc -o app", nothing, own},
        {"below the drivers", "lltwrapper_cfg=-1", "gcc -o app", nothing, own},
        {"a hidden output", "", "gcc -o d/.hidden", nameless, own},
        {"a directory as output", "", "gcc -o out/", nameless, own},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        EXPECT_EQ(run(row.env, row.args), 0);
        EXPECT_TRUE(std::regex_match(out + calls, std::regex(row.out))) << out;
        EXPECT_TRUE(std::regex_match(err, std::regex(row.hint))) << err;
    }
}

TEST_F(EndToEnd, ASpoiledProcessStillBuilds)
{
    ::setenv("LLTWRAPPER_EXACT_STATUS", "1", 1);
    ::setenv("RECORDER_END", "3", 1);
    const std::string program = "'" LLTWRAPPER "' gcc -E a.c";
    const struct {
        const char* what;
        std::string command;
    } rows[] = {
        {"no input", program + " <&-"},
        {"no output", program + " >&-"},
        {"no error output", program + " 2>&-"},
        {"none of them", program + " <&- >&- 2>&-"},
        {"ended children are ignored", "env --ignore-signal=CHLD " + program},
        {"a full disk", program + " >/dev/full"},
        {"nobody reads",
         "{ sleep 0.3; " + program + "; echo $? >status; } | true; exit $(cat status)"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        write_file("log", "");
        EXPECT_EQ(WEXITSTATUS(std::system(row.command.c_str())), 3);
        EXPECT_EQ(read_file("log"), "[gcc][-E][a.c]\n");
    }
}

} // namespace
