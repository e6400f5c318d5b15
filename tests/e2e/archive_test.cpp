// Archive steps of the built program on objects of the real compiler with the real archiver, and
// programs that are linked with the result and a small coverage runtime.
#include "tests/lltld/work_area.h"

namespace
{
/// Tells what the stub asks of the runtime, and at the dump the first counter of each buffer.
const char* const RUNTIME = R"~(#include <stdio.h>
static char* bufs[9]; static int n, state; int a(void), b(void);
void* QMR_CreateCoverageListExt(const char* m, const char* d, unsigned long c, int k)
{ printf("list %s %s %lu %d\n", m, d, c, k); return bufs; }
int QMR_AddCoverageBuf(void* p, unsigned i, char* f, char* b, unsigned s, unsigned k)
{ printf("add %d %u %s %u %u\n", p == bufs, i, f, s, k); bufs[n++] = b; return 1; }
void QMR_DumpModuleCovdata(char* m) { printf("dump %s %d %d %d\n", m, n, *bufs[0], *bufs[1]); }
void TUSK_CovSetSupportVbsFlag(unsigned f) {} void TUSK_CovSetCompilePolicy(int o) {}
int QMRGetTargetState() { return state; } void QMRSetTargetState(int s) { state = s; }
int QMRInit(int t, char* p) { printf("init %.18s\n", p); return 1; }
int main(void) { printf("main %d %d\n", state, a() + a() + b()); return 0; }
)~";

class ArchiveStep : public TestDir
{
protected:
    std::string stub, out, err;

    void SetUp() override
    {
        TestDir::SetUp();
        stub = dir + "/libm/codemeasure/obj/__code_measure_stub_lib_libm.o";
        answer("mkdir tool x y; ln -s LLTTEMP T; cp '" LLTWRAPPER "' tool");
        write_file("step", "export isOverlappedCompile=0 TimerPolicy=0 SignalPolicy=0 "
                           "lltcovRootpath= LLT_DISABLE_SOCKET=1 qmr_current_prj_path=$PWD/d.prj\n"
                           "tool/lltwrapper -artool ar -arsuffix .a ar rcs \"$@\"\n");
    }

    /// NAME.o, instrumented under the symbol, whose record is left as well.
    void compile(const std::string& name, const std::string& symbol, int points,
                 const std::string& command = "gcc", const std::string& type = "int")
    {
        write_file(name + ".c", "extern unsigned " + type + " g_QMRCovData_" + symbol +
                                    "[];\nint " + name + "(void) { return ++*g_QMRCovData_" +
                                    symbol + "; }\n");
        answer("mkdir -p LLTTEMP; gcc -c " + name + ".c");
        leave_record(symbol, points, command);
    }

    int archive(const std::string& members)
    {
        const int status = std::system(("sh ./step libm.a " + members + " >out 2>err").c_str());
        out = read_file("out"), err = read_file("err");
        return status / 256;
    }
};
} // namespace

TEST_F(ArchiveStep, ALibraryRegistersItsArraysAtLoadAndDumpsThemAtUnload)
{
    const std::string yes = "GccOption=-x -hcov_type=\"unsigned long\" -y\n", c = "GccCOption=-c\n",
                      no = "GccOption=-c\n";
    const struct {
        const char* what;
        char mode;
        const char* type;        ///< of the elements of the arrays in the objects
        std::string ini;         ///< section "GccOption" of "InstCode.ini"
        std::string a, b;        ///< bytes that are registered for 1 and 33 points
        const char* array_bytes; ///< of the arrays in the stub
        const char* members;
    } rows[] = {
        {"bits", '0', "int", "", "4", "8", "4\n8\n", "a.o b.o"},
        {"a custom type with one key missing", '1', "int", yes, "4", "132", "4\n132\n", "a.o b.o"},
        {"bytes, members in a response file", '2', "char", yes + c, "1", "33", "1\n33\n", "@list"},
        {"a custom type of the C++ options", '1', "long", yes + c, "4", "132", "8\n264\n",
         "a.o b.o"},
        {"a custom type of the C options", '1', "long", no + "GccCOption=-hcov_type=\"y\"\n", "4",
         "132", "8\n264\n", "a.o b.o"},
        {"an option without a type", '1', "int", no + "GccCOption=-hcov_type\n", "4", "132",
         "4\n132\n", "a.o b.o"},
    };
    write_file("list", "a.o 'b.o'");
    write_file("rt.c", RUNTIME);
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        const std::string members = row.members;
        ::setenv("qmr_coverage_stub_mold", std::string(1, row.mode).c_str(), 1);
        write_file("tool/InstCode.ini", "[GccOption]\n" + row.ini);
        compile("a", "a_1", 1, "gcc", row.type);
        compile("b", "b_1", 33, "gcc", row.type);
        EXPECT_EQ(archive(members), 0);
        EXPECT_EQ(err, "");
        EXPECT_NE(out.find("\nlltar cmd:\n ar rcs libm.a " + stub + " " + members + "  \n"),
                  out.npos);
        EXPECT_EQ(answer("ar t libm.a"), "__code_measure_stub_lib_libm.o\na.o\nb.o\n");
        EXPECT_EQ(answer("nm -S -t d " + stub + " | awk '/QMRCov/ && NF > 3 {print $2 + 0}'"),
                  row.array_bytes);
        EXPECT_EQ(
            answer("gcc -w rt.c -Wl,--whole-archive libm.a -Wl,--no-whole-archive && ./a.out"),
            "list libm " + dir + "/libm/codemeasure 2 " + static_cast<char>(row.mode + 1) +
                "\nadd 1 0 a_1.c " + row.a + " 1\nadd 1 1 b_1.c " + row.b +
                " 33\ninit {\"projectname\":\"d\"\nmain 1 4\ndump libm 2 2 1\n");
    }
}

TEST_F(ArchiveStep, ASecondRunSupersedesASymbolAndForgetsTheFirst)
{
    compile("a", "a_1", 1);
    compile("b", "b_1", 33);
    EXPECT_EQ(archive("a.o b.o"), 0);
    answer("cd libm/codemeasure; touch db/own db/db-1 db/dbx ini/old");
    compile("a", "a_2", 2);
    EXPECT_EQ(archive("b.o a.o"), 0); // the archive with a_1 is no member of itself
    EXPECT_EQ(
        answer("cd libm/codemeasure; ls db ini obj/before ../../T/codemeasure/* | xargs echo; "
               "tr -s '\\0' ' ' <db/tuple.db"),
        "../../T/codemeasure/db: dba_2 dbb_1 ../../T/codemeasure/ini: a_2.ini b_1.ini "
        "../../T/codemeasure/obj: after before db: db0 db1 own tuple.db ini: a_2.ini b_1.ini "
        "obj/before: a_2 b_1\nb.c b.o b_1 a.c a.o a_2 ");
}

TEST_F(ArchiveStep, AnArchiveThatKeepsWhatWasSupersededIsNamed)
{
    compile("a", "a_1", 1);
    answer("ar rcs old.a a.o");
    compile("a", "a_2", 2);
    EXPECT_EQ(archive("old.a a.o"), 0);
    EXPECT_EQ(err, ""); // both are there
    for (const std::string members : {"old.a a.o", "a.o old.a"}) {
        EXPECT_EQ(archive(members), 1);
        EXPECT_NE(err.find("lltwrapper: '" + dir + "/old.a' holds counters of an earlier"),
                  err.npos)
            << err;
    }
    answer("rm old.a");
    compile("a", "a_3", 3);
    EXPECT_EQ(archive("a.o"), 0);
    EXPECT_EQ(answer("nm " + stub + " | grep -o 'B g_QMR.*'"), "B g_QMRCovData_a_3\n");
}

TEST_F(ArchiveStep, ATestLoaderIsNoMemberWithCoverage)
{
    compile("a", "a_1", 1);
    compile("b", "b_1", 1);
    write_file("b.c",
               "extern int g_QMRCovData_b_1[]; void ZJ_Start_b(void) { ++*g_QMRCovData_b_1; }");
    answer("gcc -c b.c");
    EXPECT_EQ(archive("b.o a.o"), 0);
    EXPECT_EQ(out.find("g_QMRCovData_b_1"), out.npos) << out;
    EXPECT_EQ(answer("nm " + stub + " | grep -o 'B g_QMR.*'"), "B g_QMRCovData_a_1\n");
    answer("rm -r libm libm.a");
    EXPECT_EQ(archive("b.o"), 0); // nothing to cover
    EXPECT_EQ(out.find("lltar cmd:"), out.npos) << out;
    EXPECT_EQ(answer("ar t libm.a"), "b.o\n");
}

TEST_F(ArchiveStep, TwoStepsOfOneWorkAreaDoNotMix)
{
    compile("a", "a_1", 1, "sleep 0.3; gcc");
    compile("b", "b_1", 1, "sleep 0.3; gcc");
    answer("sh ./step x/libm.a a.o >out 2>x/err & sh ./step y/libm.a b.o >out2 2>y/err; wait");
    EXPECT_EQ(answer("nm x/libm.a | grep -o 'B g_QMR.*'; nm y/libm.a | grep -o 'B g_QMR.*'; "
                     "cat */err | grep -c '^lltwrapper: .*/libm.a'"), // one area for both
              "B g_QMRCovData_a_1\nB g_QMRCovData_b_1\n1\n");
}

TEST_F(ArchiveStep, AFailureKeepsTheArchiverFromRunningButAMissingStubDoesNot)
{
    compile("a", "a_1", 1, "false");
    answer("rm T/codemeasure/obj/before/a_1");
    EXPECT_EQ(archive("a.o"), 1);
    const std::string end = "\033[0;32;31mTUSK_FATAL:TidyCoverageDB error\n\033[m";
    EXPECT_EQ(out.find(end) + end.size(), out.size()) << out;
    EXPECT_NE(err.find("lltwrapper: nothing is archived"), err.npos) << err;
    answer("test ! -e libm.a && touch T/codemeasure/obj/before/a_1");
    EXPECT_EQ(archive("a.o"), 0); // whatever the archiver says of the missing stub
    EXPECT_TRUE(std::regex_search(err, std::regex("^lltwrapper: .*\nar: " + stub))) << err;
    answer("gcc -xc -c -o " + stub + " /dev/null; touch -d '1 hour ago' " + stub);
    EXPECT_EQ(archive("a.o"), 0);
    EXPECT_EQ(err.rfind("lltwrapper: ", 0), 0U) << err; // of an old stub
    EXPECT_EQ(answer("ar t libm.a"), "__code_measure_stub_lib_libm.o\na.o\n");
}

TEST_F(ArchiveStep, ALibraryOfTheTemporaryAreasNameDoesNotEmptyIt)
{
    compile("a", "a_1", 1);
    answer("find T/ -type f | sort >left");
    EXPECT_EQ(std::system("sh ./step LLTTEMP.a a.o >out 2>err") / 256, 1);
    EXPECT_EQ(answer("find T/ -type f | sort | comm -23 left -; wc -l <left"), "4\n");
    EXPECT_NE(read_file("err").find("a library named 'LLTTEMP' would take"), std::string::npos);
    EXPECT_EQ(archive("a.o"), 0);
}

TEST_F(ArchiveStep, NothingThatComesFromAFileIsExecuted)
{
    answer("mkdir LLTTEMP");
    for (const std::string version : {"", "_2"}) { // the second supersedes the first
        std::string object = "#;touch pwned|";
        leave_record(";touch");
        for (const std::string name :
             {"$(touch${IFS}pwned)", "x;touch\tpwned", "'\ntouch\tpwned\n'"}) {
            object += "#" + name + version + "|";
            leave_record(name + version);
            write_file("T/codemeasure/ini/" + name + version + ".ini",
                       "[StubFiles]\nStubFilePath1=`touch pwned`" + name +
                           "\nObjFilePath=;touch pwned\n");
        }
        write_file("a.o", object_bytes(object));
        EXPECT_EQ(archive("a.o"), 0);
        EXPECT_NE(out.find("lltar cmd:"), out.npos) << out;
    }
    EXPECT_EQ(
        answer("ls -b T/codemeasure/ini | grep -c 'ned.*_2.ini'; ls T/codemeasure/ini -b | wc -l; "
               "find . -name pwned"),
        "3\n4\n");
}

TEST_F(ArchiveStep, ThousandsOfMembersBeyondOneShellWordAreArchived)
{
    answer("mkdir LLTTEMP; for i in `seq 2400`; do printf 'g_QMRCovData_s%d\\0' $((i / 50)) >x/" +
           std::string(50, 'o') + "$i.o; done");
    for (int i = 0; i <= 48; ++i) {
        leave_record("s" + std::to_string(i));
    }
    EXPECT_EQ(std::to_string(archive("x/*.o")) + err, "0");
    EXPECT_GT(out.size() - out.find("lltar cmd:"), 131072U);
    EXPECT_EQ(answer("ar t libm.a | wc -l; nm " + stub + " | grep -c 'B g_QMRCov'"), "2401\n49\n");
}
