// The built program in front of recorder tools: what it prints, what the tools receive, and the
// exit status. Project root /p and stub mode 2 unless a row says otherwise.
#include "tests/fixture.h"

#include <regex>
#include <sys/wait.h>
#include <vector>

namespace
{

/// A command whose tool succeeds. Environment and arguments are quoted as for a shell.
struct Row {
    std::string env, args;     ///< NAME=value sets, -u NAME unsets
    std::string before = {};   ///< printed before the rebuilt command, with the driver's own words
    std::string rebuilt = {};  ///< the rebuilt command, when it is not `args`
    std::string received = {}; ///< how the tool records it, when not the same words
    std::string warning = {};
};

std::string cc(const std::string& root = "/p")
{
    return "lltcc cmd:\n lltcc -qmr_current_prj_path " + root +
           " -projectname LLTTEMP  -qmr_coverage_stub_mold 2 ";
}

std::string ld(const std::string& name, const std::string& driver = "lltld")
{
    return "lltld cmd:\n " + driver + " -qmr_current_prj_path /p -projectname " + name +
           " -qmr_coverage_stub_mold 2 ";
}

std::string info(const std::string& text, const std::string& value)
{
    return "\033[0;32;34mTUSK_INFO:\n" + text + ":: " + value + "\n\033[m";
}

std::string in_brackets(const std::string& words)
{
    return std::regex_replace(words, std::regex(" *([^ ]+) +"), "[$1]");
}

class EndToEnd : public TestDir
{
protected:
    std::string out, err, calls;

    void SetUp() override
    {
        TestDir::SetUp();
        const char* const link =
            "mkdir bin; for tool in gcc ar lltcc lltld lltld_kernel lltld_omu lltld_noos hotpatch "
            "link_fixaddr_hotpatch; do ln -s '" RECORDER "' bin/$tool; done";
        ASSERT_EQ(std::system(link), 0);
        ::setenv("PATH", (dir + "/bin:/usr/bin:/bin").c_str(), 1);
        ::setenv("RECORDER_LOG", (dir + "/log").c_str(), 1);
        ::setenv("qmr_current_prj_path", "/p", 1);
        ::setenv("qmr_coverage_stub_mold", "2", 1);
    }

    int run(const std::string& env, const std::string& args)
    {
        write_file("run",
                   "rm -f log; exec env " + env + " '" LLTWRAPPER "' " + args + " >out 2>err");
        const int status = std::system("sh ./run");
        out = read_file("out"), err = read_file("err"), calls = read_file("log");
        return WEXITSTATUS(status);
    }

    /// Standard error holds one line of the program's own with this text; for no text none.
    bool warns(const std::string& text) const
    {
        const std::string line = "lltwrapper: [^\n]*" + text + "[^\n]*\n";
        return std::regex_match(err, std::regex("(Killed\n)?" + (text.empty() ? text : line)));
    }

    void check(const std::vector<Row>& rows)
    {
        for (const Row& row : rows) {
            SCOPED_TRACE(row.env + " lltwrapper " + row.args);
            const std::size_t title = row.before.find("cmd:\n ");
            const std::string driver = title == row.before.npos ? "" : row.before.substr(title + 6);
            const std::string rebuilt = row.rebuilt.empty() ? row.args + " " : row.rebuilt;
            const std::string words = row.received.empty() ? in_brackets(rebuilt) : row.received;
            EXPECT_EQ(run(row.env, row.args), 0);
            const std::string call = in_brackets(driver) + words;
            EXPECT_EQ(calls, call + "\n");
            EXPECT_EQ(out, row.before + rebuilt + (driver.empty() ? "" : " \n") +
                               call.substr(1, call.find(']') - 1) + " ran\n");
            EXPECT_TRUE(warns(row.warning)) << err;
        }
    }
};

TEST_F(EndToEnd, EachModeForwardsItsCommand)
{
    const std::string no_name = "error \"projectname\". \r\n", avoid = "LLTLD_AVOID_SAME_NAME=";
    check({{"", "gcc -c -o a.o a.c", cc()},
           {"", "gcc -oapp a.o"},
           {"", "gcc -o d.1/e.f -o b.c/a.o.x", ld("a")},
           {"", "gcc -o a\xD0\xB0p", ld("a")}, // 0xD0 becomes a NUL, which ends the name
           {avoid + "2", "gcc -o libx.so.1", ld("libx")},
           {avoid + "1", "gcc -o d.1/libx.so.1", ld("libx_so_1")},
           {avoid + "1", "gcc -o .tmp_vmlinux1", ld("tmp_vmlinux1")},
           {avoid + "1", "gcc -o .x", ld("_x")},
           {"lltwrapper_cfg=2x", "gcc -c -o mod.o"},
           {"lltwrapper_cfg=2", "gcc -c -o a.mod.o.mod.o"},
           {"lltwrapper_cfg=2", "gcc -c -o d/mod.o", cc()},
           {"lltwrapper_cfg=2", "gcc -c x.mod.o", cc()},
           // The rebuild and the classification do not take the same words for options.
           {"", "gcc -OBJSUFFIX .o -ARTOOL -c a.c -o a.o", ld("a")},
           {"", "gcc -objsuffix -c a.c -o a.o", ld("a"), "gcc a.c -o a.o "},
           {"", "gcc -c -objsuffix .o a.c", cc()},
           {"", "gcc -qmr_current_prj_path -c -projectname N a.c", cc(), "gcc a.c "},
           {"", "gcc -c a.c -qmr_coverage_stub_mold -E", "", "gcc -c a.c "},
           {"", "gcc -LLTWRAPPER_ENVFILE -c a.c", cc(), "gcc a.c "},
           {"", "gcc -mshort-load-bytes -c a.c", cc(), "gcc a.c "},
           {"", "gcc a.c -o -c", cc()},
           {"", "gcc a.o -o"},
           {"", "gcc a.o -Xlinker"},
           {"", "gcc a.o -qmr_current_prj_path", no_name, "gcc a.o ", "", "-qmr_current_prj_path"},
           {"", "gcc a.o -qmr_current_prj_path P", no_name, "gcc a.o "},
           {"", "gcc -qmr_current_prj_path P a.o", no_name, "gcc a.o "}});
    run("qmr_current_prj_path=.", "ar rcs libm.a -artool ar -arsuffix .a");
    EXPECT_EQ(calls, "[ar][rcs][libm.a]\n");
}

TEST_F(EndToEnd, ArgumentsAreRewrittenAndEscaped)
{
    write_file("a <\"(b)\">.o", "");
    const std::string path = "gcc -Wl,-rpath,\\$ORIGIN:$ORIGIN  ";
    const std::string bare = "gcc x-Wl,-rpath\\$$ORIGIN  ";
    // 132,000 bytes: more than one argument of a shell may hold.
    const std::string many =
        std::regex_replace(std::string(11000, 'd'), std::regex("d"), " include/dir");
    check({{"", "gcc -E -DX=" + std::string(600, 'a') + many},
           {"", "gcc 'a <\"(b)\">.o'", "", "gcc a\\ \\<\\\"\\(b\\)\\\"\\>.o ",
            "[gcc][a <\"(b)\">.o]"},
           {"", "gcc '-DN=\"b\"' -o 'a b'", ld("a32b"), "gcc -DN=\\\"b\\\" -o a\\ b ",
            "[gcc][-DN=\"b\"][-o][a b]"},
           {"M=m", "gcc \"-DX='q'\" -D '$M'", "", "gcc -DX='q' -D $M ", "[gcc][-DX=q][-D][m]"},
           {"M=m", "gcc -Xlinker '$M b'", "", "gcc -Xlinker \"$M b\" ", "[gcc][-Xlinker][m b]"},
           {"", "gcc -Xlinker -E", "", "gcc -Xlinker \"-E\" ", "[gcc][-Xlinker][-E]"},
           {"", "gcc -Wa,-march=armv7-a+sec 'no such.o'", "", "gcc -Wa,-march=armv7-a no such.o "},
           {"", "gcc '-Wl,-rpath,$ORIGIN:$ORIGIN'", "cmd:: " + path + "\n", path,
            "[gcc][-Wl,-rpath,$ORIGIN:]"},
           {"", "gcc 'x-Wl,-rpath,$ORIGIN'", "cmd:: " + bare + "\n", bare, "[gcc][x-Wl,-rpath$]"},
           {"", "gcc a%% %%% %s%n %", "", "gcc a% %% %s%n % ", "[gcc][a%%][%%%][%s%n][%]"},
           {"", "gcc -c a%%.c", cc()}});
}

TEST_F(EndToEnd, TheEnvironmentNamesTheProjectAndTheTarget)
{
    const std::string on = "TUSK_ENABLE_m32m64=1", x(254, 'x'), deep(300, 'd');
    const std::string root = "qmr_current_prj_path", mode = "qmr_coverage_stub_mold";
    check(
        {{root + "=/u/my.prj.d/sub", "gcc -c a.c", cc("/u")},
         {root + "=demo.PRJ", "gcc -c a.c", cc("demo")},
         {root + "=/demo.prj", "gcc -c a.c", cc("")},
         {root + "=/p/x.prj/", "gcc -c a.c", cc("/p")},
         {root + "=" + deep + "/x.prj", "gcc -c a.c", cc(deep)},
         {"-u " + root, "gcc -c a.c", cc(""), "", "", root},
         {"-u " + mode, "gcc -o app",
          "lltld cmd:\n lltld -qmr_current_prj_path /p -projectname app -qmr_coverage_stub_mold  ",
          "", "", mode},
         {"-u " + mode + " -u " + root, "gcc -E a.c"},
         {on, "gcc -m64 -m32 -o a-b", ld("a45b_m32"), "", "[gcc][-m64][-m32][-o][a-b]{m32m64=1}"},
         {on, "gcc -L -m32 -o app", ld("app"), "", "[gcc][-L][-m32][-o][app]{m32m64=2}"},
         {"TUSK_ENABLE_m32m64=0", "gcc -m32 -o app", ld("app")},
         {"TUSK_ENABLE_m32m64=", "gcc -o " + x + "--", ld(x + "45")},
         {"lltwrapper_cfg=2", "gcc -o app", ld("app", "lltld_kernel")},
         {"lltwrapper_cfg=3x", "gcc -o app", ld("app", "hotpatch")},
         {"lltwrapper_cfg=4", "gcc -o app", ld("app", "lltld_noos")},
         {"lltwrapper_cfg=6", "gcc -o app", ld("app", "lltld_noos")},
         {"lltwrapper_cfg=7", "gcc -o app", ld("app", "lltld_omu")},
         {"lltwrapper_cfg=8", "gcc -o app", ld("app", "link_fixaddr_hotpatch")}});
}

TEST_F(EndToEnd, KernelListsNameTheirTargets)
{
    ASSERT_EQ(std::system("mkdir -p drv/net"), 0);
    const std::string list = "lltwrapper_cfg=1 LLT_TargetName=", path = dir + "/drv/net/n";
    const auto hit = [&](const std::string& key, const std::string& kind) {
        return info("itor_temp->first", key) + info("linkage-target-meet-" + kind, path);
    };
    const auto named = [](const std::string& kind, const std::string& name) {
        return "TUSK-NAME_BY_USER_" + kind + ":: " + name + "\n" + ld(name, "lltld_kernel");
    };
    const std::string target = info("linkage-target", path), net = target + hit("/net", "krnl");
    const std::string ko = hit("drv", "ko"), no = dir + "/no", link = "gcc -o drv/net/n";
    check({{list + "drv,b:/net,a:/net,c", link, net + named("KRNL", "c")},
           {list + ",x:/net,:drv,y:", link, target + hit("drv", "krnl") + named("KRNL", "y")},
           {list + ":/net,x", link, target + info("linkage-target-omitted", path)},
           {list + "/net,x LLT_TargetName_KO=drv,k", link, net + ko + named("KRNL", "x")},
           {list + "/net LLT_TargetName_KO=drv,k TUSK_ENABLE_m32m64=1", link,
            target + ko + named("KO", "k"), "", "[gcc][-o][drv/net/n]{inner=1}"},
           {list + "/net,x", "gcc -o no/net/n",
            info("linkage-target", no) + info("linkage-target-omitted", no)},
           {list, "gcc -o .tmp_vmlinux1", ld("tmp_vmlinux1", "lltld_kernel")},
           {list, "gcc -o app"}});
    // The final kernel image gets the stub; nothing is flushed, so the tool's line comes first.
    const std::string image =
        "gcc -o vmlinux /p/tmp_vmlinux1/codemeasure/obj/__code_measure_stub_lib_tmp_vmlinux1.o";
    run(list, "gcc -o vmlinux");
    EXPECT_EQ(out, "gcc ran\nspecial_cmd:: " + image + "\n");
    EXPECT_EQ(calls, in_brackets(image + " ") + "\n");
}

TEST_F(EndToEnd, TheExitStatusDependsOnTheMode)
{
    const std::string compile = "gcc -c a.c", plain = "gcc -E a.c",
                      image = "gcc -o x/.tmp_vmlinux2";
    const std::string link = "gcc -o app", exact = "LLTWRAPPER_EXACT_STATUS=1 RECORDER_END=";
    const std::string rows[][4] = {
        {"RECORDER_END=77", compile, "1", ""},
        {"RECORDER_END=-9", compile, "1", ""},
        {"RECORDER_END=77", link, "1", ""},
        {"RECORDER_END=77", plain, "0", "77"},
        {"RECORDER_END=127", plain, "0", "127"},
        {"RECORDER_END=-9", plain, "0", "137"},
        {"RECORDER_END=77 lltwrapper_cfg=1", image, "0", "(?=.*_tmp_vmlinux1).*77"},
        {"RECORDER_END=77 LLTWRAPPER_EXACT_STATUS=0", plain, "0", "77"},
        {"", "'kill -9 $$'", "9", ""}, // the shell itself dies
        {exact + "77", compile, "77", ""},
        {exact + "127", link, "127", ""},
        {exact + "-9", plain, "137", ""},
        {exact, "'kill -9 $$'", "137", ""}};
    for (const auto& [env, args, status, hidden] : rows) {
        EXPECT_EQ(std::to_string(run(env, args)), status) << env << args;
        EXPECT_TRUE(warns(hidden)) << env << args << err;
    }
}

TEST_F(EndToEnd, ALogTakesTheProgramsLinesAndTheToolsKeepTheOutput)
{
    const std::string rows[][4] = {
        {"", "gcc -c a.c", "lltcc ran\n", "lltcc cmd:\n .* \n"},
        {"", "gcc -o app", "lltld ran\n", "lltld cmd:\n .* \n"},
        {"", "gcc -E a.c", "gcc ran\n", "gcc -E a.c "},
        {"lltwrapper_cfg=1", "gcc -o x/.tmp_vmlinux2", "gcc ran\n", "special_cmd:: .*\n"}};
    std::string all;
    for (const auto& [env, args, prints, logs] : rows) {
        run(env + " LLTWRAPPER_LOG=own.log", args);
        EXPECT_EQ(out, prints);
        all += logs;
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
    const std::string rows[][4] = {{"", "", "error usage\n", ".*\n.*\n"},
                                   {"", "-v", banner, ""},
                                   {"", "-V gcc -c a.c", banner, ""},
                                   {"", "--version", banner, ""},
                                   {"", "--help", "[^]*lltwrapper[^]*\n", ""},
                                   {"", "-objsuffix .o", "", ""},
                                   {"lltwrapper_cfg=5", "gcc -o app", nothing, own},
                                   {"lltwrapper_cfg=9", "gcc -o app", nothing, own},
                                   {"lltwrapper_cfg=-1", "gcc -o app", nothing, own},
                                   {"", "gcc -o d/.hidden", nameless, own},
                                   {"", "gcc -o out/", nameless, own}};
    for (const auto& [env, args, prints, hints] : rows) {
        EXPECT_EQ(run(env, args), 0) << env << args;
        EXPECT_TRUE(std::regex_match(out + calls, std::regex(prints))) << env << args << out;
        EXPECT_TRUE(std::regex_match(err, std::regex(hints))) << env << args << err;
    }
}

TEST_F(EndToEnd, ASpoiledProcessStillBuilds)
{
    ::setenv("LLTWRAPPER_EXACT_STATUS", "1", 1);
    ::setenv("RECORDER_END", "3", 1);
    const std::string program = "'" LLTWRAPPER "' gcc -E a.c";
    for (const std::string& command :
         {program + " <&-", program + " >&-", program + " 2>&-", program + " <&- >&- 2>&-",
          "env --ignore-signal=CHLD " + program, program + " >/dev/full",
          "{ sleep 0.3; " + program + "; echo $? >status; } | true; exit $(cat status)"}) {
        write_file("log", "");
        EXPECT_EQ(WEXITSTATUS(std::system(command.c_str())), 3) << command;
        EXPECT_EQ(read_file("log"), "[gcc][-E][a.c]\n") << command;
    }
}

} // namespace
