// The built lltcov asked about commands; the words that it finds compared with those of a shell,
// and its forwarded commands against those of the built lltwrapper.
#include "lltcov/explain/explain_words.h"
#include "tests/lltld/work_area.h"

#include <sys/wait.h>

namespace
{

/// A command and the beginnings of lines that the answer must have, where blanks count as one.
struct Row {
    std::string env, args;
    int warnings; ///< so many; the exit status is 1 when there are any
    std::vector<std::string> lines;
};

class Explain : public TestDir
{
protected:
    std::string out;

    void SetUp() override
    {
        TestDir::SetUp();
        answer("mkdir bin LLTTEMP; ln -s LLTTEMP T; cd bin; for tool in lltcc lltld lltld_kernel "
               "gcc ar; do ln -s /bin/true $tool; done");
        ::setenv("PATH", (dir + "/bin:/usr/bin:/bin").c_str(), 1);
        ::setenv("qmr_current_prj_path", "/p", 1);
        ::setenv("qmr_coverage_stub_mold", "2", 1);
    }

    int run(const std::string& env, const std::string& program, const std::string& args)
    {
        write_file("run", "exec env " + env + " '" + program + "' " + args + " >out 2>&1");
        const int status = std::system("sh ./run");
        out = read_file("out");
        return WEXITSTATUS(status);
    }

    void check(const std::vector<Row>& rows)
    {
        for (const Row& row : rows) {
            SCOPED_TRACE(row.env + " lltcov explain " + row.args);
            EXPECT_EQ(run(row.env, LLTCOV, "explain " + row.args), row.warnings == 0 ? 0 : 1);
            const std::string text = "\n" + std::regex_replace(out, std::regex(" +"), " ");
            for (const std::string& line : row.lines) {
                EXPECT_NE(text.find("\n" + line), text.npos) << line << "\nis not in\n" << out;
            }
            const std::regex warning("\nwarning ");
            EXPECT_EQ(std::distance(std::sregex_iterator(text.begin(), text.end(), warning), {}),
                      row.warnings)
                << out;
        }
    }
};

/// The words in brackets, each with its live characters after it.
std::string split(const std::string& command)
{
    const ShellWords shell = split_for_shell(command);
    std::string text;
    for (const ShellWord& word : shell.words) {
        text += bracketed(word.text) + visible(word.live);
    }
    return shell.open == '\0' ? text : text + " open " + shell.open;
}

} // namespace

TEST_F(TestDir, WordsAreThoseThatTheShellHandsOn)
{
    const std::string rows[][2] = {
        {"", ""},
        {" a\tb  c ", "[a][b][c]"},
        {R"(my\ f\(1\).c \a \\ \')", R"([my f(1).c][a][\]['])"},
        {R"('a  \b' "a  b" '' "" x''y)", R"([a  \b][a  b][][][xy])"},
        {R"("\$\`\"\\\a" '"')", R"([$`"\\a]["])"},
        {"a\\\nb \"c\\\nd\"", "[ab][cd]"},
        {"\\$X '$X' \\` '*'\\? \"[~{a,b}#;\" \\~ '~'", "[$X][$X][`][*?][[~{a,b}#;][~][~]"},
        {"a#b {} {a} }x %s a~ $ a$ \"$\" $/", "[a#b][{}][{a}][}x][%s][a~][$][a$][$][$/]"}};
    for (const auto& [command, expected] : rows) {
        EXPECT_EQ(split(command), expected);
        write_file("c", "set -- " + command + "\nfor w; do printf '[%s]' \"$w\"; done\n");
        EXPECT_EQ(answer("sh ./c"), expected) << command;
    }
}

TEST(Words, WhatTheShellActsUponIsLive)
{
    const std::string rows[][2] = {
        {"a$X$Y ${a b} `e f`", "[a$X$Y]$[${a b}]$[`e f`]`"},
        {"\"$X `c d`\" $? $(a (b) c)", "[$X `c d`]$`[$?]$[$(a (b) c)]$"},
        {"${a:-\\}} b", "[${a:-\\}}]$[b]"},
        {"*.o a?[b] ~/a", "[*.o]*[a?[b]]?[[~/a]~"},
        {"a;b&&c >d|(e)", "[a][;];[b][&&]&[c][>]>[d][|(]|([e][)])"},
        {"a$\\\nX \"$\\\n\\\n{Y}\" $\\\n(z) $\\\n", "[a$X]$[${Y}]$[$(z)]$[$]"},
        {"a\nb\x01", "[a][\\n]\\n[b\\x01]"},
        {"a #b 'c\nd", "[a][#b 'c]#[\\n]\\n[d]"},
        {"a{b,c} {1..2} {3 4,}", "[a{b,c}]{[{1..2}]{[{3][4,}]"},
        {"a 'b", "[a][b] open '"},
        {"\"b\\", "[b\\] open \""},
        {"$(a", "[$(a]$ open ("},
        {"`a", "[`a]` open `"},
        {"a\\", "[a\\]"}};
    for (const auto& [command, expected] : rows) {
        EXPECT_EQ(split(command), expected);
    }
}

TEST_F(Explain, ModeReasonAndCommandsAreTheWrappers)
{
    const std::string prefix = "lltcc -qmr_current_prj_path /p -projectname LLTTEMP "
                               "-qmr_coverage_stub_mold 2 ",
                      kernel = "lltwrapper_cfg=1 ", list = kernel + "LLT_TargetName=";
    write_file("my file.o", "");
    check(
        {{"",
          "-- lltwrapper gcc -c a.c",
          0,
          {"mode compile", "because -c", "name LLTTEMP", "rebuilt gcc -c a.c",
           "forwarded " + prefix + "gcc -c a.c", "words 1 [lltcc]\n 2 [", " 9 [-c]\n 10 [a.c]\ns",
           "status 0, or 1"}},
         {"",
          "gcc 'my file.o' -m32 -o d/a-b.x",
          0,
          {"mode link", "because a separate -o", "name a45b", " 9 [my file.o]"}},
         {"", "gcc -c -E a.c", 0, {"mode unchanged", "because -S or -E", "status 0, also"}},
         {"LLTWRAPPER_EXACT_STATUS=1", "gcc a.c", 0, {"because no -c", "status the command's"}},
         {"lltwrapper_cfg=2", "gcc -c -o a.mod.o", 0, {"mode unchanged", "because output 'a.m"}},
         {kernel, "gcc -o x/vmlinux", 0, {"mode kernel", " 4 [/p/tmp_vmlinux1/codemeasure/obj/"}},
         {kernel, "gcc -o .tmp_vmlinux1", 0, {"mode link", "name tmp_vmlinux1"}},
         {kernel, "gcc -o app", 0, {"mode unchanged", "because lltwrapper_cfg is 1, no target"}},
         {list + "bin,n LLT_TargetName_KO=/q/,k",
          "gcc -o bin/x",
          0,
          {"because lltwrapper_cfg is 1: key 'bin' of LLT_TargetName in '" + dir + "/bin/x'",
           "name n", "prints TUSK_INFO:\n linkage-target:: "}},
         {list + "/q/,n", "gcc -o bin/x", 0, {"mode unchanged", "because lltwrapper_cfg is 1: no"}},
         {"", "--project=/q -- gcc -c a.c", 0, {"forwarded lltcc -qmr_current_prj_path /q -p"}},
         {"", "-- lltwrapper -V", 0, {"mode none", "prints [TUSK LINUX CADDIS]"}}});
    for (const std::string args : {"", "--", "-x -- gcc", "--project"}) {
        EXPECT_EQ(run("", LLTCOV, "explain " + args), 2) << args;
        EXPECT_EQ(out.rfind("lltcov: ", 0), 0U) << out;
    }
}

TEST_F(Explain, WhatWillNotDoWhatOneExpectsIsAWarning)
{
    const std::string shell = "warning word 9 [", root = "qmr_current_prj_path";
    check(
        {{"", "gcc a.o -oapp", 1, {"mode unchanged", "warning '-oapp'"}},
         {"", "gcc -Xlinker -E -o app", 1, {"mode unchanged", "warning '-E' is the value of '-X"}},
         {"", "ar rcs libx.a", 1, {"mode unchanged", "warning 'ar' is no archiver"}},
         {"", "-- -artool gcc-ar ar rcs a", 1, {"warning 'ar' is not the archiver of -artool"}},
         {"", "-- -artool ar ar -c libx.a a.o", 1, {"mode compile", "warning '-c' makes"}},
         {"", "gcc -c -artool ar", 1, {"warning word 10 [-artool]: reaches the tool"}},
         {"", "gcc -c a.c -artool", 1, {"rebuilt gcc -c a.c", "warning option '-artool' stands"}},
         {"", "gcc '-DX=$Y' -o a", 1, {" 9 [-DX=$Y]", shell + "-DX=$Y]: the shell expands '$'"}},
         {"", "gcc 'a b.o' -o app", 1, {" 9 [a]\n 10 [b.o]", shell + "a], word 10 [b.o]: no ar"}},
         {"", "gcc \"-DX='\" -o app", 2, {"warning the shell refuses the command: '"}},
         {"-u " + root,
          "gcc -c a.c",
          1,
          {"warning '" + root +
           "' is not set: there is no project to put coverage data in; source the project's "
           "TUSK_INIT.SH, or ask by 'lltcov run -- lltcov explain -- COMMAND'\n"}},
         {"-u qmr_coverage_stub_mold", "gcc -c a.c", 1, {"warning 'qmr_coverage_stub_mold' is"}},
         {root + "='/a b'", "gcc -c a.c", 1, {" 3 [/a]\n 4 [b]", "warning project path '/a b'"}},
         {root + "=p", "gcc -c a.c", 1, {"warning project path 'p' is relative"}},
         {"lltwrapper_cfg=5", "gcc -o app", 1, {"rebuilt gcc -o app \nstatus 0\n", "warning no"}},
         {"", "gcc -o .x", 1, {"prints lltwrapper error, NULL", "warning nothing is linked"}},
         {"lltwrapper_cfg=3", "gcc -o app", 1, {"warning driver 'hotpatch' is not found"}},
         {"", "no-such-gcc a.c", 1, {"warning tool 'no-such-gcc' is not found"}}});
}

TEST_F(Explain, AnArchiveStepIsSeenAsFarAsItsMembers)
{
    const std::string set = "isOverlappedCompile=0 TimerPolicy=0 SignalPolicy=0 lltcovRootpath= "
                            "LLT_DISABLE_SOCKET=1 qmr_current_prj_path=" +
                            dir,
                      ar = "-- lltwrapper -artool ar -arsuffix .a ar ", s31(31, 's'), s32(32, 's');
    const std::string stub = dir + "/libm/codemeasure/obj/__code_measure_stub_lib_libm.o";
    for (const std::string& symbol : {std::string("a_1"), std::string("b_1"), s31, s32}) {
        leave_record(symbol);
        write_file((symbol.size() > 3 ? symbol : symbol.substr(0, 1)) + ".o",
                   object_bytes("#" + symbol + "|"));
    }
    write_file("d.o", object_bytes("#d_1|"));
    write_file("__code_measure_stub_lib_libk.o", object_bytes("ZJ_Start_libk|#a_1|"));
    write_file("list", "a.o 'b.o'");
    answer("echo >c.o; for l in '-k:a.o c.o' '-q:" + s31 +
           ".o'; do /usr/bin/ar rcS lib${l%:*}.a "
           "__code_measure_stub_lib_libk.o ${l#*:}; done");
    run("", LLTCOV, "explain gcc");
    const std::string before = answer("find . | sort");
    check(
        {{set,
          ar + "rcs libm.a a.o b.o c.o",
          0,
          {"mode archive", "because archiver 'ar' (-artool), archive 'libm.a', 2 of 3 members",
           "name libm", "work area " + dir + "/libm/codemeasure\n",
           "forwarded ar rcs libm.a " + stub + " a.o b.o c.o", " 3 [libm.a]\n 4 [" + stub + "]",
           "note without coverage: 'c.o';"}},
         {set, ar + "rcs libm.a @list", 0, {"mode archive", "because archiver 'ar' (-artool), a"}},
         {set,
          ar + "rcs libm.a c.o x.o",
          0,
          {"mode unchanged", "forwarded ar rcs libm.a c.o x.o",
           "note without coverage: 'c.o', "
           "'x.o' (missing)"}},
         {set, "-- -artool ar ar rcs libm.a", 1, {"mode archive", "warning option -arsuffix is"}},
         {set, ar + "--version", 1, {"because archiver 'ar' (-artool), no", "warning no argument"}},
         {set, ar + "t libm.a a.o", 1, {"warning operation 't' fills no archive"}},
         {set, ar + "rcs lib+m.a a.o", 1, {"warning module name 'lib+m'"}},
         {set + " LLT_DISABLE_SOCKET=0", ar + "r libm.a a.o", 1, {"warning sockets are enabled"}},
         {set,
          ar + "r libm.a a.o d.o",
          1,
          {"warning 1 of 2 symbols have no record, and the step fails: the first is 'd_1' of '" +
           dir + "/d.o', which lacks '" + dir + "/LLTTEMP/codemeasure/ini/d_1.ini'"}},
         {set, ar + "r libm.a " + s31 + ".o", 0, {"mode archive"}},
         {set, ar + "r libm.a " + s32 + ".o", 1, {"warning symbol '" + s32 + "' of '" + dir}},
         {set, ar + "r lib-k.a ./a.o", 0, {"name lib_k"}}, // c.o stays as well: not instrumented
         {set, ar + "r lib-k.a b.o", 1, {"warning 'a.o' stays in 'lib-k.a'"}},
         {set, ar + "r lib-q.a a.o", 1, {"warning '" + s31 + ".o' stays in 'lib-q.a'"}}});
    EXPECT_EQ(answer("find . | sort"), before); // nothing is made
}

TEST_F(Explain, TheForwardedCommandIsWhatTheWrapperRuns)
{
    ::setenv("qmr_current_prj_path", dir.c_str(), 1);
    write_file("a (1).o", object_bytes("#a_1|"));
    leave_record("a_1");
    for (const std::string args :
         {"gcc -c 'a (1).c' '-DX=\"y\"'", "gcc 'a (1).o' -mshort-load-bytes -O2 -m32 -o app",
          "gcc -S a.c", "-artool ar -arsuffix .a ar rcs libm-1.a 'a (1).o'",
          "gcc '-Wl,-rpath,$ORIGIN' -o vmlinux"}) {
        const std::string env = "TUSK_ENABLE_m32m64=1 lltwrapper_cfg=" +
                                std::string(args.find("vmlinux") == args.npos ? "0" : "1");
        run(env, LLTCOV, "explain -- lltwrapper " + args);
        std::smatch found;
        ASSERT_TRUE(std::regex_search(out, found, std::regex("\nforwarded  (.*)\n"))) << out;
        const std::string forwarded = found[1];
        run(env, LLTWRAPPER, args);
        EXPECT_NE(out.find(forwarded), out.npos) << forwarded << "\nis not in\n" << out;
    }
}
