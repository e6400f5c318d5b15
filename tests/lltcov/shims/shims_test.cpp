// Shims of recorder tools: which calls go through the wrapper, and with which words.
#include "tests/fixture.h"

#include <filesystem>
#include <regex>
#include <sys/wait.h>
#include <vector>

namespace
{

namespace fs = std::filesystem;

/// A call through a shim with LLT_WRAP=1.
struct Row {
    std::string call;
    bool is_wrapped;
    std::string words = {}; ///< what the tool or the wrapper gets, where not the call's own words
};

std::string in_brackets(const std::string& words)
{
    return std::regex_replace(words, std::regex(" *([^ ]+)"), "[$1]");
}

class Shims : public TestDir
{
protected:
    std::string out, calls;

    void SetUp() override
    {
        TestDir::SetUp();
        fs::create_directories("bin");
        fs::create_directories("home");
        for (const char* tool : {"gcc", "g++", "clang-14", "arm-none-eabi-gcc-ar-9", "ar", "ld",
                                 "lltcc", "lltld", "cc1", "tar", "gcc-nm", "nm"}) {
            fs::create_symlink(RECORDER, std::string("bin/") + tool);
        }
        fs::copy_file(LLTCOV, "home/lltcov");
        ::setenv("PATH", (dir + "/bin:/nowhere").c_str(), 1);
        ::setenv("RECORDER_LOG", (dir + "/log").c_str(), 1);
        ::setenv("qmr_current_prj_path", (dir + "/project").c_str(), 1);
    }

    /// Runs a command for the shell; `out` is what it printed, `calls` what the recorders saw.
    int run(const std::string& command)
    {
        write_file("run", "rm -f log; exec >out 2>&1\n" + command);
        const int status =
            std::system("PATH=$PATH:/usr/bin:/bin; exec timeout 20 sh ./run </dev/null");
        out = read_file("out"), calls = read_file("log");
        return WEXITSTATUS(status);
    }

    void write_shims(const std::string& wrapper)
    {
        fs::create_symlink(wrapper, "home/lltwrapper");
        write_file("run", "exec home/lltcov shims shims >out 2>&1"); // with the PATH of the test
        ASSERT_EQ(std::system("/bin/sh ./run"), 0) << read_file("out");
        ::setenv("PATH", (dir + "/shims:" + dir + "/bin").c_str(), 1);
    }

    void check(const std::vector<Row>& rows)
    {
        for (const Row& row : rows) {
            SCOPED_TRACE(row.call);
            const std::string words = in_brackets(row.words.empty() ? row.call : row.words);
            const std::string tool = words.substr(1, words.find(']') - 1);
            const bool archives = tool.find("ar") != tool.npos && tool.find("g++") == tool.npos;
            const std::string wrapper = "[lltwrapper]" +
                                        (archives ? "[-artool][" + tool + "][-arsuffix][.a]" : "") +
                                        "[" + dir + "/bin/" + words.substr(1);
            EXPECT_EQ(run("LLT_WRAP=1 exec " + row.call), 0) << out;
            EXPECT_EQ(calls, (row.is_wrapped ? wrapper : words) + "\n");
            for (const char* off : {"unset LLT_WRAP", "LLT_WRAP=", "LLT_WRAP=0"}) {
                run(off + std::string("; export LLT_WRAP; exec ") + row.call);
                EXPECT_EQ(calls, in_brackets(row.call) + "\n") << off;
            }
        }
    }
};

TEST_F(Shims, OnlyStepsThatMakeCodeAreWrapped)
{
    write_shims(RECORDER);
    check({{"gcc -c x.c", true},
           {"g++ -O2 -MMD -MF x.d x.o -o x", true},
           {"clang-14 -c x.c -o x.o", true},
           {"gcc -oapp x.o", true, "gcc -o app x.o"},
           {"gcc x.c -lm", true, "gcc x.c -lm -o a.out"},
           {"gcc x.o -Xlinker -E -o x", true, "gcc x.o -Wl,-E -o x"},
           {"gcc x.o -Xlinker -rpath,a -o x", true},
           {"gcc -E x.c -o x.i", false},
           {"gcc -S x.c", false},
           {"gcc -MM x.c -o x.d", false},
           {"gcc -M x.c", false},
           {"gcc -print-prog-name=ld", false},
           {"gcc --version x.c", false},
           {"gcc -dumpmachine", false},
           {"gcc -v", false},
           {"gcc -v -I x", false},
           {"gcc -c -x c - -o /dev/null", false},
           {"gcc -c -x c /dev/null -o x.o", false},
           {"gcc -c x.c -o /dev/null", false},
           {"gcc -c x.c -o/dev/null", false},
           {"gcc -MMD -MF /dev/null -include /dev/null -MT - -c x.c", true},
           {"gcc -MD -MF - -c x.c", true},
           {"gcc x.o -o /dev/null", true},
           {"gcc -x c - -x none libx.a -o x", true},
           {"gcc conftest.c x.o -o conftest", true},
           {"gcc -x c++-header x.h -o x.h.gch", false},
           {"gcc -o conftest conftest.c", false},
           {"gcc -c conftest1.c", false},
           {"gcc -c x.c -o conftest2.o", false},
           {"gcc -c conftest__.c -o conftest__.o", false},
           {"gcc -c conftests.c", true},
           {"g++ /b/meson-private/sanity.cc -o /b/meson-private/sanity.exe", false},
           {"ld -o x x.o", true},
           {"ld -E -S -ox x.o", true, "ld --export-dynamic --strip-debug -o x x.o"},
           {"ld -r -o x.o y.o", false},
           {"ld -v", false}});
    EXPECT_EQ(run("LLT_WRAP=1 exec gcc -xc - -c -o x.o"), 0);
    EXPECT_EQ(
        out,
        "lltwrapper: 'gcc' runs without coverage: its source comes from standard input\ngcc ran\n");
    EXPECT_EQ(run("LLT_WRAP=1 exec gcc -xc - -xnone y.o -o x"), 0);
    EXPECT_EQ(out.find("lltwrapper: 'gcc' links a source from standard input without coverage\n"),
              0U);
    for (const char* trial : {"CMakeFiles/CMakeScratch/t", "CMakeFiles/_CMakeLTOTest-C/bin",
                              "CMakeFiles/3.25.1/CompilerIdC", "b/meson-private"}) {
        fs::create_directories(trial);
        run(std::string("cd ") + trial + " && LLT_WRAP=1 exec gcc -c x.c");
        EXPECT_EQ(calls, "[gcc][-c][x.c]\n") << trial;
    }
    EXPECT_EQ(run("exec ls shims"), 0);
    EXPECT_EQ(out, "ar\narm-none-eabi-gcc-ar-9\nclang-14\ng++\ngcc\nld\n");
}

TEST_F(Shims, ResponseFilesSayWhatAStepIs)
{
    write_shims(RECORDER);
    write_file("compile.rsp", "-O2\n-MF x.d -o x.o -c x.c");
    write_file("link.rsp", "x.o -oapp");
    write_file("output.rsp", "x.o -o\n app");
    write_file("quoted.rsp", "x.o -o 'a\\ b'");
    write_file("words.rsp", "\"x.o\" '-o' \"app\"");
    write_file("nested.rsp", "'@link.rsp' @nested.rsp");
    write_file("asks.rsp", "-c -E");
    check({{"gcc @compile.rsp", true, "gcc @compile.rsp -c"},
           {"gcc @link.rsp", true, "gcc -o app @link.rsp"},
           {"gcc @output.rsp", true, "gcc -o app @output.rsp"},
           {"gcc @link.rsp -o x", true},
           {"gcc @words.rsp", true, "gcc -o app @words.rsp"},
           {"gcc @nested.rsp -lm", true, "gcc -o app @nested.rsp -lm"},
           {"gcc @compile.rsp @link.rsp -o y.o", true, "gcc @compile.rsp @link.rsp -o y.o -c"},
           {"gcc @quoted.rsp", true, "gcc -o a @quoted.rsp"},
           {"gcc @asks.rsp -o x", false},
           {"gcc @missing.rsp", false}});
}

TEST_F(Shims, OnlyCallsThatFillAnArchiveAreWrapped)
{
    write_shims(RECORDER);
    check({{"ar rcs libx.a x.o", true},
           {"ar -rcs libx.a x.o", true},
           {"ar qc d.e/libx.a x.o", true},
           {"ar cru libx.a x.o", true},
           {"ar -r -c -s libx.a x.o", true, "ar -r -cc -s libx.a x.o"},
           {"ar --plugin p.so rcs --output=. libx.a x.o", true},
           {"ar --target=elf -cq libx.a x.o", true},
           {"arm-none-eabi-gcc-ar-9 rcsT libx.a x.o", true},
           {"ar t libx.a", false},
           {"ar x libx.a r.o", false},
           {"ar -d libx.a q.o", false},
           {"ar s libr.a", false},
           {"ar rcs x.lib x.o", false},
           {"ar rcs lib+.a x.o", false}, // no module name
           {"ar rcs d.e/lib-x_1.a x.o", true},
           {"ar rcs libx.a x*y.o", false}, // a pattern to the shell
           {"ar rcs libx.a x#~.o", true},
           {"ar --version", false},
           {"ar -M", false}});
}

TEST_F(Shims, WordsComeThroughTheWrapperAsTheyAre)
{
    write_shims(LLTWRAPPER);
    write_file("a b.c", "");
    write_file("it's(1).o", "");
    const std::string odd =
        R"( '' "it's" 'a	b' '"<$HOME>"' 'x;y&z|*' '[?]#~{!}' '`\' '-Wl,-rpath,$ORIGIN:/a b' )"
        "'é\n.' -Xlinker '$x \"(' ";
    for (const std::string& words :
         {odd + "-c 'a b.c' -o 'a b.o' -MF 'a b.d'", odd + "\"it's(1).o\" -o x",
          std::string(R"(-c '$;' "-DN='\"\$x\";(a b)'" -D '$N #"' -I '~/i' '-Li;' -o 'o $')")}) {
        SCOPED_TRACE(words);
        run("exec gcc " + words);
        std::string plain = calls.substr(0, calls.size() - 1);
        const std::size_t option = plain.find("[-Xlinker][");
        if (option != plain.npos) {
            plain.replace(option, 11, "[-Wl,");
        }
        ASSERT_NE(plain.find("[gcc]"), plain.npos);
        EXPECT_EQ(run("LLT_WRAP=1 exec gcc " + words), 0) << out;
        EXPECT_EQ(calls.substr(calls.find("/gcc]") + 1), plain.substr(1) + "\n");
        EXPECT_EQ(calls.find("[lltcc]") == 0, words.find("-c ") != words.npos);
    }
    for (const char* output : {"-o d.e/.hidden", "-o.hidden"}) {
        EXPECT_EQ(run(std::string("LLT_WRAP=1 exec gcc x.o ") + output), 0);
        EXPECT_NE(calls.find("[-projectname][_hidden]"), calls.npos) << calls;
    }
    EXPECT_EQ(run("LLT_WRAP=1 RECORDER_END=3 exec ar rc libx.a x.o"), 3) << "real exit status";
}

TEST_F(Shims, LeaveStandardOutputToTheTools)
{
    write_shims(LLTWRAPPER);
    fs::create_directories("project/LLTTEMP");
    std::string log;
    for (const char* command : {"gcc -c x.c", "gcc x.o -o x", "ar rc libx.a x.o"}) {
        EXPECT_EQ(run(std::string("LLT_WRAP=1 exec 2>said ") + command), 0) << out;
        EXPECT_TRUE(std::regex_match(out, std::regex("[a-z]+ ran\n"))) << out;
        const std::string before = log;
        log = read_file("project/LLTTEMP/build.log");
        EXPECT_NE(log.find(std::string("/") + command, before.size()), log.npos) << log;
    }
    fs::remove_all("project"); // a project that is not set up shows what happens
    EXPECT_EQ(run("LLT_WRAP=1 exec 2>said gcc -c x.c"), 0);
    EXPECT_NE(out.find("lltcc cmd:"), out.npos) << out;
}

TEST_F(Shims, NeverFindThemselves)
{
    // Runs the next tool of its name on PATH, as a masquerading cache does, and in the end a shim.
    write_file("bin/c++", "#!/bin/sh\nIFS=:\nfor d in $PATH; do\ncase $d in " + dir +
                              "/bin | /usr/bin | /bin) ;;\n"
                              "*) [ ! -x $d/c++ ] || exec $d/c++ \"$@\" ;;\nesac\ndone\n"
                              "exec " +
                              dir + "/shims/gcc -c inner.c\n");
    fs::permissions("bin/c++", fs::perms::owner_all);
    write_shims(RECORDER);
    for (const char* on : {"0", "1"}) {
        EXPECT_EQ(run(std::string("LLT_WRAP=") + on + " exec c++ -E x.cc"), 0) << out;
        EXPECT_EQ(calls, "[gcc][-c][inner.c]\n") << on;
    }
    const std::string first = read_file("shims/gcc");
    EXPECT_EQ(run("exec home/lltcov shims shims"), 0) << out; // with the directory on PATH
    EXPECT_EQ(read_file("shims/gcc"), first);
    fs::create_directories("links");
    fs::create_symlink(dir + "/shims/gcc", "links/gcc");
    EXPECT_EQ(run("PATH=" + dir + "/links:$PATH exec home/lltcov shims more"), 0) << out;
    EXPECT_EQ(read_file("more/gcc"), first);
}

TEST_F(Shims, TakeTheirDirectoryOffPath)
{
    write_file("bin/c89", "#!/bin/sh\necho \"$PATH\"\n");
    fs::permissions("bin/c89", fs::perms::owner_all);
    write_shims(RECORDER);
    const std::string shims = dir + "/shims";
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"S:/b:/c", "/b:/c"}, {"/b:S:/c", "/b:/c"}, {"/b:S", "/b"},
        {"/b::S", "/b:"},     {":S:/b", ":/b"},     {"/Sx:S/y", "/Sx:S/y"}};
    for (const auto& [before, after] : rows) {
        const auto path = [&](const std::string& text) {
            return std::regex_replace(text, std::regex("S"), shims);
        };
        run("PATH=" + path(before) + " exec " + shims + "/c89");
        EXPECT_EQ(out, path(after) + "\n");
    }
}

TEST_F(Shims, ReplaceNothingButShims)
{
    write_shims(RECORDER);
    fs::create_directories("other");
    fs::create_symlink(dir + "/shims/gcc", "other/gcc");
    for (const char* place : {"bin", "other"}) {
        EXPECT_EQ(run(std::string("exec home/lltcov shims ") + place), 1);
        EXPECT_NE(out.find("is no shim and stays"), out.npos) << out;
        EXPECT_TRUE(fs::is_symlink(std::string(place) + "/gcc"));
        EXPECT_FALSE(fs::exists(std::string("other/ar"))); // all or none
    }
    EXPECT_EQ(run("exec home/lltcov shims"), 2);
    EXPECT_EQ(run("exec home/lltcov shims a:b"), 2);
    EXPECT_FALSE(fs::exists("a:b"));
}

TEST_F(Shims, LaunchersAreLeftOutOfAWrappedBuild)
{
    fs::create_symlink(RECORDER, "bin/ccache");
    write_shims(RECORDER);
    check({{"ccache -s", false}, {"ccache max_size=1G", false}});
    run("LLT_WRAP=1 exec ccache gcc -c x.c");
    EXPECT_EQ(calls, "[lltwrapper][" + dir + "/bin/gcc][-c][x.c]\n");
    run("exec ccache gcc -c x.c");
    EXPECT_EQ(calls, "[ccache][gcc][-c][x.c]\n");
}

TEST_F(Shims, PassShellcheck)
{
    if (std::system("PATH=$PATH:/usr/bin command -v shellcheck >/dev/null") != 0) {
        GTEST_SKIP() << "no shellcheck";
    }
    fs::create_symlink(RECORDER, "bin/ccache");
    write_shims(RECORDER);
    EXPECT_EQ(run("exec shellcheck -s sh shims/gcc shims/ld shims/ar shims/ccache"), 0) << out;
}

} // namespace
