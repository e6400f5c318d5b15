// What of a project is shown: texts that are still what was compiled, and runs test by test.
#include "tests/lltcov/project_fixture.h"

#include <cstdlib>

TEST_F(ProjectDataTest, LinesOfATextThatHasChangedAreNotShown)
{
    add_dump(dir + "/liba/codemeasure", "Q1", one_run_);
    set_time(dir + "/a.c", COMPILED + 9);
    EXPECT_EQ(counts(), "- 4 ");
    EXPECT_NE(said("changed sources").find("/a.c' has changed since"), std::string::npos);
    set_time(dir + "/a.c", COMPILED);
    set_time(dir + "/h.h", COMPILED + 9);
    EXPECT_EQ(counts(), "3 - ");
    set_time(dir + "/h.h", COMPILED);
    write_file(dir + "/a.c", "123456");
    set_time(dir + "/a.c", COMPILED);
    EXPECT_EQ(counts(), "- 4 ");
    std::filesystem::remove(dir + "/a.c");
    EXPECT_EQ(counts(), "- 4 ");
    EXPECT_NE(said("sources that are gone").find("/a.c' is gone"), std::string::npos);

    // Touched and compiled again with the same result: the driver's newer record counts.
    write_file(dir + "/a.c", "123456");
    set_time(dir + "/a.c", COMPILED);
    std::filesystem::create_directories(dir + "/LLTTEMP/codemeasure/db/dbS");
    write_file(dir + "/LLTTEMP/codemeasure/db/dbS/.tab", table(0, "S", 6));
    EXPECT_EQ(counts(), "3 4 ");
}

TEST_F(ProjectDataTest, WhatATestBuiltAndRemovedIsNoProblem)
{
    add_dump("liba/codemeasure", "Q0", one_run_);
    add_dump("liba/codemeasure", "Q1", source_lines("NEW", {3, 4}));
    std::filesystem::remove(dir + "/a.c");
    EXPECT_EQ(counts(), "- 0 ");
    EXPECT_TRUE(findings_.has_problems());
    std::filesystem::remove(dir + "/liba.a");
    EXPECT_EQ(counts(), "- 0 ");
    EXPECT_FALSE(findings_.has_problems());
    for (const char* kind : {"refused dumps", "sources without records", "modules that are gone"}) {
        EXPECT_NE(said(kind), "") << kind;
    }
}

TEST_F(ProjectDataTest, RunsOfTestsAreAlsoKeptByTest)
{
    const std::string area = dir + "/liba/codemeasure";
    add_module("libc", "OTHER");
    add_dump(area, "Q1", one_run_);
    add_dump(area, "Q1", "test one\n" + source_lines("S", {10, 0}));
    add_dump(area, "Q1", "test one\n" + source_lines("S", {20, 0}));
    add_dump(area, "Q1", "test two\n" + source_lines("S", {0, 0}));
    add_dump(dir + "/libc/codemeasure", "Q1", "test two\n" + source_lines("OTHER", {0, 500}));
    EXPECT_EQ(counts(), "33 504 ");
    ProjectData data = read_modules(dir, findings_);
    add_dumps(data, dir + "/runs", findings_);
    EXPECT_EQ(data.tests, (std::set<std::string>{"one", "two"}));
    EXPECT_EQ(all_runs(data.objects[data.object_of_symbol.at("S")]).runs, 4U);
    CoverageMaker maker(data, Counting::branches, findings_);
    const std::vector<std::size_t> all = all_objects(data);
    EXPECT_EQ(counts_in(maker.coverage_of_test("", all)), "3 4 ");
    EXPECT_EQ(counts_in(maker.coverage_of_test("one", all)), "30 0 ");
    EXPECT_EQ(counts_in(maker.coverage_of_test("two", all)), "0 500 ");
    EXPECT_EQ(maker.objects_with(dir + "/h.h", 7), all);
    EXPECT_TRUE(maker.objects_with(dir + "/h.h", 8).empty());
}

TEST(WantedCounting, IsBranchesUnlessTheEnvironmentSaysOtherwise)
{
    const std::pair<const char*, Counting> cases[] = {{"", Counting::branches},
                                                      {"branches", Counting::branches},
                                                      {"lines", Counting::lines},
                                                      {"conditions", Counting::conditions}};
    for (const auto& [value, counting] : cases) {
        ::setenv("LLTCOV_COUNT", value, 1);
        EXPECT_EQ(wanted_counting(), counting) << value;
    }
    ::setenv("LLTCOV_COUNT", "line", 1);
    EXPECT_THROW(wanted_counting(), UsageError);
    ::unsetenv("LLTCOV_COUNT");
    EXPECT_EQ(wanted_counting(), Counting::branches);
}

TEST(SystemHeader, IsWhatCompilersAndPackagesBring)
{
    for (const char* path : {"/usr/include/stdio.h", "/usr/lib/gcc/x86_64-linux-gnu/12/include/a.h",
                             "/usr/local/include/b.h", "/usr/include/c++/12/vector"}) {
        EXPECT_TRUE(is_system_header(path)) << path;
    }
    for (const char* path : {"/home/usr/include/a.h", "/usr/src/p/include/a.h", "/usr/a.c"}) {
        EXPECT_FALSE(is_system_header(path)) << path;
    }
}
