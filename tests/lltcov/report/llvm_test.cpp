// Counters of clang on their way through LLVM's tools: the profile, the choice of the tools, what
// they say.
#include "commonfunc/text_lines.h"
#include "lltcov/report/lcov_reader.h"
#include "lltcov/report/llvm_reader.h"
#include "lltcov/report/llvm_tools.h"
#include "lltcov/report/report_formats.h"
#include "tests/fixture.h"

#include <cstdlib>
#include <filesystem>

namespace
{

class LlvmTest : public TestDir
{
protected:
    void add_program(const std::string& name, const std::string& script)
    {
        std::filesystem::create_directories(split(name));
        write_file(dir + "/" + name, "#!/bin/sh\n" + script + "\n");
        std::filesystem::permissions(dir + "/" + name, std::filesystem::perms::owner_all);
    }

    /// Tools of which the first makes a file and the second shows the file that is named by the
    /// option for objects, or in a file of arguments: a tracefile takes the place of an object.
    void add_tools(const std::string& directory)
    {
        add_program(directory + "/llvm-profdata", "cp \"$4\" \"$3\"");
        add_program(directory + "/llvm-cov", "eval set -- $(cat \"${4#@}\"); cat \"$1\"");
    }

    Findings findings_;

private:
    std::string split(const std::string& name) const
    {
        return dir + "/" + name.substr(0, name.rfind('/'));
    }
};

const char TRACE[] = "SF:/p/a.c\nFN:2,a.c:help\nFN:7,_Z3runv\nFNDA:3,a.c:help\nFNDA:0,_Z3runv\n"
                     "FNF:2\nFNH:1\nDA:2,3\nDA:3,18446744073709551615\n"
                     "BRDA:3,0,0,0\nBRDA:3,0,1,5\nBRDA:3,1,2,-\nBRDA:3,1,3,-\n"
                     "BRDA:4,0,0,0\nBRDA:4,0,1,0\n"
                     "BRF:6\nBRH:1\nLF:2\nLH:2\nend_of_record\n"
                     "SF:/p/b.h\nDA:1,0\nend_of_record\n";

} // namespace

TEST(ProfileText, HasTheCountersOfEachFunctionInItsOwnOrder)
{
    Record one;
    one.functions = {{"run", 0, 0, 0, 24, {{0, 2, 8}}}, {"a.c:help", 0, 0, 0, 99164, {{0, 1, 0}}}};
    Record two;
    two.functions = {{"run", 0, 0, 0, 24, {{0, 2, 0}}}};
    ObjectReading first = {&one, {7, 1, 18446744073709551615U}, {}};
    ObjectReading second = {&two, {5, 6}, {}};
    EXPECT_EQ(profile_text({&first, &second}), "# counts\n"
                                               "run\n24\n2\n1\n18446744073709551615\n\n"
                                               "a.c:help\n99164\n1\n7\n\n"
                                               "run\n24\n2\n5\n6\n\n");
}

TEST(LcovReader, ReadsLinesFunctionsAndDecisions)
{
    const Report report{"/p", Counting::branches, read_lcov(TRACE), {}};
    // A decision that was never made is known from one whose branches both have no count.
    EXPECT_EQ(as_lcov(report),
              "TN:\nSF:/p/a.c\nFN:7,_Z3runv\nFN:2,a.c:help\nFNDA:0,_Z3runv\nFNDA:3,a.c:help\n"
              "FNF:2\nFNH:1\nBRDA:3,0,0,0\nBRDA:3,0,1,5\nBRDA:3,1,0,-\nBRDA:3,1,1,-\n"
              "BRDA:4,0,0,0\nBRDA:4,0,1,0\nBRF:6\nBRH:1\nDA:2,3\nDA:3," +
                  std::to_string(MAX_COUNT) +
                  "\nLF:2\nLH:2\nend_of_record\n"
                  "TN:\nSF:/p/b.h\nFNF:0\nFNH:0\nDA:1,0\nLF:1\nLH:0\nend_of_record\n");
}

TEST(LcovReader, ElevenDecisionsOfALineStayInOrder)
{
    std::string decisions, end = "BRF:11\nBRH:11\nLF:0\nLH:0\nend_of_record\n";
    for (int i = 0; i < 11; ++i) {
        decisions += "BRDA:1," + std::to_string(i) + ",0," + std::to_string(i + 1) + "\n";
    }
    const Report report{"/p", Counting::branches, read_lcov("SF:/p/a.c\n" + decisions + end), {}};
    EXPECT_EQ(as_lcov(report), "TN:\nSF:/p/a.c\nFNF:0\nFNH:0\n" + decisions + end);
}

TEST(LcovReader, RefusesWhatIsCutOrDamaged)
{
    const std::string whole = TRACE;
    EXPECT_EQ(read_lcov("").size(), 0U);
    for (const std::string& text :
         {whole.substr(0, whole.size() - 1), std::string("SF:/p/a.c\nDA:1,2\n"),
          std::string("DA:1,2\n"), std::string("SF:/p/a.c\nDA:x,2\nend_of_record\n"),
          std::string("SF:/p/a.c\nDA:1,-\nend_of_record\n"),
          std::string("SF:/p/a.c\nBRDA:1,0,0,\nend_of_record\n")}) {
        EXPECT_THROW(read_lcov(text), FormatError) << text;
    }
}

TEST_F(LlvmTest, TheToolsAreThoseOfTheCompilerElseOfThePath)
{
    ::setenv("PATH", (dir + "/bin").c_str(), 1);
    EXPECT_EQ(find_llvm_tools("").cov, "");
    add_program("bin/llvm-cov-14", "");
    EXPECT_EQ(find_llvm_tools("").cov, ""); // the other one of its version is missing
    add_program("bin/llvm-profdata-14", "");
    EXPECT_EQ(find_llvm_tools("").cov, dir + "/bin/llvm-cov-14");
    add_tools("bin/");
    EXPECT_EQ(find_llvm_tools("").profdata, dir + "/bin/llvm-profdata");
    EXPECT_EQ(find_llvm_tools(dir + "/own").cov, dir + "/bin/llvm-cov");
    add_tools("own");
    EXPECT_EQ(find_llvm_tools(dir + "/own").cov, dir + "/own/llvm-cov");
}

TEST_F(LlvmTest, EachObjectIsReadByItselfAndABadOneIsLeftOut)
{
    add_tools("own");
    write_file(dir + "/good \"one\"", TRACE);
    write_file(dir + "/cut", std::string(TRACE).substr(0, 40));
    Record record;
    record.reader = dir + "/own";
    record.object = "/p/bad.o";
    ObjectReading good = {&record, {}, {}, dir + "/good \"one\""};
    ObjectReading cut = {&record, {}, {}, dir + "/cut"};
    read_clang_objects({&cut, &good}, Counting::branches, findings_);
    EXPECT_EQ(good.coverage.size(), 2U);
    EXPECT_EQ(cut.coverage.size(), 0U);
    ASSERT_EQ(findings_.of("unread objects").size(), 1U);
    EXPECT_NE(findings_.of("unread objects").begin()->find("'/p/bad.o' is left out"),
              std::string::npos);
}

TEST_F(LlvmTest, MissingToolsAreNamedWithTheirPackage)
{
    ::setenv("PATH", (dir + "/bin").c_str(), 1);
    Record record;
    ObjectReading object = {&record, {}, {}, dir + "/a.o"};
    EXPECT_TRUE(read_clang_together({&object}, Counting::branches, findings_).empty());
    ASSERT_EQ(findings_.of("LLVM's tools").size(), 1U);
    EXPECT_NE(findings_.of("LLVM's tools").begin()->find("package llvm"), std::string::npos);
}

TEST_F(LlvmTest, RecordedPrefixesAreThoseOfAnyObject)
{
    add_tools("own");
    write_file(dir + "/a.c", "");
    write_file(dir + "/trace",
               "SF:/build/a.c\nDA:1,1\nend_of_record\nSF:/build/b.c\nend_of_record\n");
    Record plain;
    plain.reader = dir + "/own";
    Record mapped = plain;
    mapped.path_maps = {{dir, "/build"}};
    ObjectReading one = {&plain, {}, {}, dir + "/trace"};
    ObjectReading two = {&mapped, {}, {}, dir + "/trace"};
    const Coverage coverage = read_clang_together({&one, &two}, Counting::branches, findings_);
    EXPECT_EQ(coverage.count(dir + "/a.c"), 1U);
    EXPECT_EQ(coverage.count("/build/b.c"), 1U);
}
