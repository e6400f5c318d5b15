// What a call selects of a coverage, and the lines of a change.
#include "lltcov/report/changed_lines.h"
#include "lltcov/report/selection.h"
#include "tests/fixture.h"

#include <gtest/gtest.h>

namespace
{

using Lines = std::set<std::uint32_t>;

TEST(ExcludedLines, AreThoseOfMarkedCommentsUpToTheirEnd)
{
    struct Case {
        const char* text;
        Lines all, branches;
        std::uint32_t unended;
    };
    const Case cases[] = {
        {"", {}, {}, 0},
        {"a // LCOV_EXCL_LINE\nb\nc // GCOVR_EXCL_LINE", {1, 3}, {}, 0},
        {"a\nb // GCOV_EXCL_START\nc\nd // GCOV_EXCL_STOP\ne", {2, 3}, {}, 0},
        {"a // LCOV_EXCL_START\nb // GCOVR_EXCL_STOP\nc // LCOV_EXCL_STOP", {1}, {}, 0},
        {"a // LCOV_EXCL_BR_LINE\nb // LCOV_EXCL_BR_START\nc\n/* LCOV_EXCL_BR_STOP */",
         {},
         {1, 2, 3},
         0},
        {"a // LCOV_EXCL_BR_START\nb // LCOV_EXCL_STOP\nc // LCOV_EXCL_LINE\n", {3}, {1, 2, 3}, 1},
        {"a\nb LCOV_EXCL_START\nc", {2, 3}, {}, 2},
        {"LCOV_EXCL_BR_START LCOV_EXCL_START\nb\nLCOV_EXCL_BR_STOP LCOV_EXCL_STOP\nd",
         {1, 2},
         {1, 2},
         0},
        {"LCOV_EXCL_START a LCOV_EXCL_STOP\nb", {1}, {}, 0},
        {"LCOV_EXCL_\nXLCOV_EXCLLINE\nLCOV_EXCL_BR\nEXCL_LINE", {}, {}, 0},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.text);
        const ExcludedLines excluded = excluded_lines(row.text);
        EXPECT_EQ(excluded.all, row.all);
        EXPECT_EQ(excluded.branches, row.branches);
        EXPECT_EQ(excluded.unended, row.unended);
    }
}

class SelectionOfSources : public TestDir
{
};

TEST_F(SelectionOfSources, IsByPatternsOfThePathInTheProjectOrTheWhole)
{
    const Coverage all = {{"/p/a.c", {}},
                          {"/p/src/a.c", {}},
                          {"/p/src/x/b.cpp", {}},
                          {"/p/tests/t.c", {}},
                          {"/q/src/other.c", {}}};
    struct Case {
        std::vector<std::string> words;
        const char* left;
    };
    const Case cases[] = {
        {{}, "/p/a.c /p/src/a.c /p/src/x/b.cpp /p/tests/t.c /q/src/other.c "},
        {{"--include", "src/a.c"}, "/p/src/a.c "},
        {{"--include", "./src/"}, "/p/src/a.c /p/src/x/b.cpp "},
        {{"--include", "src"}, "/p/src/a.c /p/src/x/b.cpp /q/src/other.c "},
        {{"--include", "/p/src/*.c"}, "/p/src/a.c "},
        {{"--include", "a.c"}, "/p/a.c /p/src/a.c "},
        {{"--include=src/*", "--include=tests/*"}, "/p/src/a.c /p/src/x/b.cpp /p/tests/t.c "},
        {{"--exclude", "tests", "--exclude", "/q"}, "/p/a.c /p/src/a.c /p/src/x/b.cpp "},
        {{"--include", "*.c", "--exclude", "?.c"}, "/q/src/other.c "},
        {{"--include", "rc/*"}, ""},
        {{"--include", "."}, "/p/a.c /p/src/a.c /p/src/x/b.cpp /p/tests/t.c "},
        {{"--exclude", "p"}, "/p/a.c /p/src/a.c /p/src/x/b.cpp /p/tests/t.c /q/src/other.c "},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.left);
        const Selection selection(
            CommandLine(row.words, with_selection_flags({}), with_selection_options({})), "/p");
        Coverage coverage = all;
        Findings findings;
        selection.apply(coverage, findings);
        std::string left;
        for (const auto& source : coverage) {
            left += source.first + " ";
        }
        EXPECT_EQ(left, row.left);
        EXPECT_EQ(selection.has_selected(coverage), !left.empty());
    }
}

TEST_F(SelectionOfSources, LeavesOutMarkedLinesWithTheirFunctionsAndBranches)
{
    write_file("a.c", "f // LCOV_EXCL_LINE\ng\nh // LCOV_EXCL_BR_LINE\ni // LCOV_EXCL_START\n");
    SourceCoverage source;
    source.lines = {{1, 0}, {2, 5}, {3, 5}, {4, 0}};
    source.functions = {{"f", {1, 0}}, {"g", {2, 5}}};
    for (const std::uint32_t line : {1U, 2U, 3U}) {
        source.blocks[line]["g"].branches = {{1, false, false}};
    }
    source.blocks[2]["g"].branches.push_back({0, true, false});
    source.blocks[4]["g"].branches = {{0, true, false}};
    const auto applied = [&](const std::vector<std::string>& words) {
        Coverage coverage = {{dir + "/a.c", source}};
        Findings findings;
        Selection(CommandLine(words, with_selection_flags({}), {}), dir).apply(coverage, findings);
        const Rates rates = rates_of(coverage);
        return std::to_string(rates.lines.total) + " " + std::to_string(rates.functions.total) +
               " " + std::to_string(rates.branches.total) + " " +
               std::to_string(findings.lines().size());
    };
    EXPECT_EQ(applied({}), "2 1 2 1");
    EXPECT_EQ(applied({"--no-markers"}), "4 2 5 0");
    EXPECT_EQ(applied({"--no-markers", "--exclude-throw-branches"}), "4 2 3 0");
}

TEST(SelectionRates, AreMissedBelowTheWantedPercentageOnly)
{
    SourceCoverage source;
    source.lines = {{1, 1}, {2, 0}, {3, 4}};
    source.blocks[1]["f"].branches = {{1, false, false}, {0, false, false}};
    const Coverage coverage = {{"/a.c", source}};
    const auto is_reached = [&](const std::vector<std::string>& words, const Coverage& of) {
        return Selection(CommandLine(words, {}, with_selection_options({})), "/").is_reached(of);
    };
    EXPECT_TRUE(is_reached({}, coverage));
    EXPECT_TRUE(is_reached({"--fail-under-line=66.6", "--fail-under-branch=50"}, coverage));
    EXPECT_FALSE(is_reached({"--fail-under-line=66.7"}, coverage));
    EXPECT_FALSE(is_reached({"--fail-under-branch=50.1"}, coverage));
    EXPECT_TRUE(is_reached({"--fail-under-line=100"}, {}));
    SourceCoverage quarter; // 161 of 250 are 64.4 %, which has no exact binary form
    for (std::uint32_t line = 1; line <= 250; ++line) {
        quarter.lines[line] = line <= 161 ? 1 : 0;
    }
    EXPECT_TRUE(is_reached({"--fail-under-line=64.4"}, {{"/a.c", quarter}}));
    EXPECT_FALSE(is_reached({"--fail-under-line=64.5"}, {{"/a.c", quarter}}));
    for (const char* wrong : {"", "x", "5x", "101", "-1", "nan"}) {
        EXPECT_THROW(is_reached({"--fail-under-line", wrong}, coverage), UsageError) << wrong;
    }
}

TEST(ChangedLines, AreThoseThatADiffAdds)
{
    struct Case {
        const char* what;
        const char* diff;
        ChangedLines changed;
    };
    const Case cases[] = {
        {"nothing", "", {}},
        {"no context",
         "diff --git a/d/a.c b/d/a.c\n--- a/d/a.c\n+++ b/d/a.c\n@@ -1,0 +2,2 @@ int f()\n"
         "+x\n+y\n@@ -9 +11 @@\n-z\n+w\n",
         {{"d/a.c", {2, 3, 11}}}},
        {"context, a time",
         "--- old/a.c\t2026-01-01\n+++ new/a.c\t2026-01-02\n@@ -1,4 +1,4 @@\n a\n-b\n"
         "+B\n c\n\n",
         {{"new/a.c", {2}}}},
        {"lines like heads",
         "--- a/a.c\n+++ b/a.c\n@@ -1,2 +1,3 @@\n--- x\n+++ y\n+z\n k\n"
         "--- a/b.c\n+++ b/b.c\n@@ -0,0 +1 @@\n+@@ -1 +1 @@\n\\ No newline\n",
         {{"a.c", {1, 2}}, {"b.c", {1}}}},
        {"a removed file", "--- a/a.c\n+++ /dev/null\n@@ -1,2 +0,0 @@\n-a\n-b\n", {}},
        {"a quoted name",
         "--- \"a/\\303\\244 \\\"x\\\".c\"\n+++ \"b/\\303\\244 \\\"x\\\".c\"\n@@ -1 +1 @@\n-a\n+b\n",
         {{"\xc3\xa4 \"x\".c", {1}}}},
        {"cut", "--- a/a.c\n+++ b/a.c\n@@ -1,2 +1,9 @@\n+a", {{"a.c", {1}}}},
        {"other text",
         "hello\n@@ x\n+++ b/a.c\r\n@@ -1 +1 @@\n-a\n+b\nsigned off\n",
         {{"a.c", {1}}}},
    };
    for (const Case& row : cases) {
        EXPECT_EQ(changed_lines(row.diff), row.changed) << row.what;
    }
}

} // namespace
