// Archive steps with the real compiler and archiver, and programs linked with the result.
#include "tests/lltld/work_area.h"

namespace
{
/// Tells what the stub asks of the runtime, and at the dump the first counter of each buffer.
const char* const RUNTIME = R"~(#include <stdio.h>
static char* bufs[9]; static int n, state; int a(void), b(void);
void* QMR_CreateCoverageListExt(const char* m, const char* d, unsigned long c, int k)
{ printf("list %s %s %lu %d", m, d, c, k); return bufs; }
int QMR_AddCoverageBuf(void* p, unsigned i, char* f, char* b, unsigned s, unsigned k)
{ printf(" add %d %u %s %u %u", p == bufs, i, f, s, k); bufs[n++] = b; return 1; }
void QMR_DumpModuleCovdata(char* m) { printf(" dump %s %d %d %d\n", m, n, *bufs[0], *bufs[1]); }
void TUSK_CovSetSupportVbsFlag(unsigned f) {} void TUSK_CovSetCompilePolicy(int o) {}
int QMRGetTargetState() { return state; } void QMRSetTargetState(int s) { state = s; }
int QMRInit(int t, char* p) { printf(" init %.18s", p); return 1; }
int main(void) { printf(" main %d %d", state, a() + a() + b()); return 0; }
)~";

class ArchiveStep : public WorkArea
{
protected:
    std::string stub, out;

    void SetUp() override
    {
        WorkArea::SetUp();
        stub = dir + "/libm/codemeasure/obj/__code_measure_stub_lib_libm.o";
        answer("mkdir tool x y; ln -s T LLTTEMP; cp '" LLTWRAPPER "' tool");
        write_file("step", "export isOverlappedCompile=0 TimerPolicy=0 SignalPolicy=0 "
                           "lltcovRootpath= LLT_DISABLE_SOCKET=1 qmr_current_prj_path=$PWD/d.prj\n"
                           "tool/lltwrapper -artool ar -arsuffix .a ar rcs \"$@\"\n");
    }

    /// NAME.o, instrumented under the symbol NAME_1, whose record is left as well.
    void compile(const std::string& symbol, int points, const std::string& cc = "gcc",
                 const std::string& type = "int")
    {
        const std::string name(1, symbol[0]), array = "g_QMRCovData_" + symbol;
        write_file(name + ".c", "extern unsigned " + type + " " + array + "[];\nint " + name +
                                    "(void) { return ++*" + array + "; }\n");
        answer("gcc -c " + name + ".c");
        leave_record(symbol, points, cc);
    }

    std::string archive(const std::string& members) // exit status and standard error
    {
        const int status = std::system(("sh ./step libm.a " + members + " >out 2>err").c_str());
        out = read_file("out");
        return std::to_string(status / 256) + read_file("err");
    }
};
} // namespace

TEST_F(ArchiveStep, ALibraryRegistersItsArraysAtLoadAndDumpsThemAtUnload)
{
    const std::string yes = "Option=-x -hcov_type=\"unsigned long\" -y\n", no = "Option=-c\nGccC";
    const std::tuple<const char*, const char*, std::string, std::string, std::string, std::string>
        rows[] = {{"0", "int", "", "4", "8", "4 8"},
                  {"2", "char", yes + "GccCOption=-c\n", "1", "33", "1 33"},
                  {"1", "long", no + yes, "4", "132", "8 264"},
                  {"1", "int", no + "Option=-hcov_type\n", "4", "132", "4 132"}};
    write_file("list", "a.o 'b.o'");
    write_file("rt.c", RUNTIME);
    for (const auto& [mode, type, ini, a, b, sizes] : rows) {
        const std::string members = *mode == '2' ? "@list" : "a.o b.o";
        write_file("tool/InstCode.ini", "[GccOption]\nGcc" + ini);
        compile("a_1", 1, "gcc", type);
        compile("b_1", 33, "gcc", type);
        ::setenv("qmr_coverage_stub_mold", mode, 1);
        EXPECT_EQ(archive(members), "0");
        EXPECT_NE(out.find("\nlltar cmd:\n ar rcs libm.a " + stub + " " + members + "  \n"),
                  out.npos);
        EXPECT_EQ(answer("ar t libm.a; nm -S -t d " + stub +
                         " | awk '/QMRCov.*_/ && NF > 3 {print $2 + 0}' | xargs"),
                  "__code_measure_stub_lib_libm.o\na.o\nb.o\n" + sizes + "\n");
        EXPECT_EQ(answer("gcc -w rt.c -Wl,--whole-archive libm.a -Wl,--no-whole-archive; ./a.out"),
                  "list libm " + dir + "/libm/codemeasure 2 " + std::to_string(*mode - '0' + 1) +
                      " add 1 0 a_1.c " + a + " 1 add 1 1 b_1.c " + b +
                      " 33 init {\"projectname\":\"d\" main 1 4 dump libm 2 2 1\n");
    }
    answer("touch libm/codemeasure/db/own libm/codemeasure/ini/old");
    compile("a_2", 2); // supersedes the symbol, which the old archive still holds
    EXPECT_EQ(archive("b.o a.o"), "0");
    EXPECT_EQ(answer("cd libm/codemeasure; tr -s '\\0' ' ' <db/tuple.db; echo; "
                     "ls db ini obj/before ../../T/codemeasure/* | xargs"),
              "b.c b.o b_1 a.c a.o a_2 \n../../T/codemeasure/db: dba_2 dbb_1 "
              "../../T/codemeasure/ini: a_2.ini b_1.ini ../../T/codemeasure/obj: before "
              "db: db0 db1 own tuple.db ini: a_2.ini b_1.ini obj/before: a_2 b_1\n");
}

TEST_F(ArchiveStep, TwoStepsOfOneWorkAreaDoNotMix)
{
    compile("a_1", 1, "sleep 0.3; gcc");
    compile("b_1", 1, "sleep 0.3; gcc");
    answer("sh ./step x/libm.a a.o >out 2>x/err & sh ./step y/libm.a b.o >out2 2>y/err; wait");
    EXPECT_EQ(answer("for i in x y; do nm $i/libm.a | grep -o 'B g_QMR.*'; done; "
                     "cat */err | grep -c '^lltwrapper: .*/libm.a'"), // one area for both
              "B g_QMRCovData_a_1\nB g_QMRCovData_b_1\n1\n");
}

TEST_F(ArchiveStep, AFailureKeepsTheArchiverFromRunningButAMissingStubDoesNot)
{
    compile("a_1", 1, "false");
    answer("rm T/codemeasure/obj/before/a_1");
    EXPECT_EQ(archive("a.o"), "1");
    const std::string end = "\033[0;32;31mTUSK_FATAL:TidyCoverageDB error\n\033[m";
    EXPECT_EQ(out.find(end) + end.size(), out.size()) << out;
    answer("test ! -e libm.a && touch T/codemeasure/obj/before/a_1"); // now only the stub fails
    EXPECT_NE(archive("a.o").find("\nar: " + stub), out.npos);
    EXPECT_EQ(read_file("err").rfind("lltwrapper: ", 0), 0U);
}

TEST_F(ArchiveStep, NothingThatComesFromAFileIsExecuted)
{
    for (const std::string version : {"", "_2"}) { // the second supersedes the first
        const std::string a = "$(touch${IFS}pwned)" + version, b = "'\n`touch\tpwned`\n'" + version;
        leave_record(a);
        leave_record(b);
        write_file("a.o", object_bytes("#" + a + "|#" + b + "|"));
        archive("a.o");
        EXPECT_NE(out.find("lltar cmd:"), out.npos) << out;
    }
    EXPECT_EQ(answer("ls -b T/codemeasure/ini | grep -vc _2 | xargs; find . -name pwned"), "0\n");
}

TEST_F(ArchiveStep, ThousandsOfMembersBeyondOneShellWordAreArchived)
{
    leave_record("s");
    answer("for i in `seq 2400`; do printf 'g_QMRCovData_s\\0' >x/" + std::string(50, 'o') +
           "$i.o; done");
    EXPECT_EQ(archive("x/*.o"), "0");
    EXPECT_GT(out.size() - out.find("lltar cmd:"), 131072U);
    EXPECT_EQ(answer("ar t libm.a | wc -l; nm " + stub + " | grep -c 'B g_QMRCov'"), "2401\n1\n");
}
