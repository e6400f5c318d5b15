// The model: how what runs and objects count becomes one.
#include "lltcov/common/console.h"
#include "lltcov/report/coverage.h"
#include "lltcov/report/report_formats.h"
#include "lltcov/report/report_text.h"

#include <gtest/gtest.h>

TEST(Coverage, RunsAddUpStayAtTheLargestCountAndJoinTheirEndByOr)
{
    Counters sum;
    join_counters(sum, {5, MAX_COUNT - 1, 0, 1, 0x6}, 2);
    join_counters(sum, {2, 2, 7, 4, 0x3}, 2);
    EXPECT_EQ(sum, (Counters{7, MAX_COUNT, 7, 5, 0x7}));
    join_counters(sum, {0, 1, 0, 8, 0}, 0);
    EXPECT_EQ(sum, (Counters{7, MAX_COUNT, 7, 13, 0x7}));
    EXPECT_EQ(sum_of_counts(MAX_COUNT, MAX_COUNT), MAX_COUNT);
    EXPECT_EQ(sum_of_counts(0, UINT64_MAX), MAX_COUNT);
}

TEST(Coverage, OfASourceIsTheSumOfItsObjects)
{
    SourceCoverage a;
    a.lines = {{3, 7}, {4, 5}};
    a.functions = {{"f", {3, 7}}, {"g", {9, 0}}};
    a.blocks[3]["f"] = {7, {{5, false, true}, {2, false, false}}, {{{{true, false}}}}};
    SourceCoverage b;
    b.lines = {{3, 100}, {9, 0}};
    b.functions = {{"f", {2, 100}}};
    b.blocks[3]["f"] = {100,
                        {{0, false, true}, {100, false, false}, {1, true, false}},
                        {{{{false, false}, {false, true}}}}};
    b.blocks[3]["h"] = {0, {{0, false, true}}, {}};
    add_source(a, b);
    EXPECT_EQ(
        as_lcov({"", Counting::conditions, {{"/a.c", a}}, {}}),
        "TN:\nSF:/a.c\nFN:2,f\nFN:9,g\nFNDA:107,f\nFNDA:0,g\nFNF:2\nFNH:1\n"
        "BRDA:3,0,0,5\nBRDA:3,0,1,102\nBRDA:3,0,2,1\nBRDA:3,1,0,-\nBRF:4\nBRH:3\n"
        "MCDC:3,2,t,1,0,0\nMCDC:3,2,f,0,0,0\nMCDC:3,2,t,0,1,1\nMCDC:3,2,f,1,1,1\nMCF:4\nMCH:2\n"
        "DA:3,107\nDA:4,5\nDA:9,0\nLF:3\nLH:2\nend_of_record\n");
    EXPECT_TRUE(a.blocks.at(3).at("f").branches[2].is_throw);
    const Rates rates = rates_of(Coverage{{"/a.c", a}, {"/b.c", b}});
    EXPECT_EQ(percent(rates.lines), "60.0");      // 2 + 1 of 3 + 2
    EXPECT_EQ(percent(rates.functions), "66.7");  // 1 + 1 of 2 + 1
    EXPECT_EQ(percent(rates.branches), "62.5");   // 3 + 2 of 4 + 4
    EXPECT_EQ(percent(rates.conditions), "37.5"); // 2 + 1 of 4 + 4
}

TEST(Coverage, OnlyAllIsAHundredPercentAndOnlyNothingIsZero)
{
    const std::vector<std::pair<Rate, std::string>> cases = {
        {{0, 0}, "-"},    {{0, 9}, "0.0"},           {{1, 100000}, "0.1"}, {{1, 3}, "33.3"},
        {{2, 3}, "66.7"}, {{99999, 100000}, "99.9"}, {{5, 5}, "100.0"},
    };
    for (const auto& [rate, text] : cases) {
        EXPECT_EQ(percent(rate), text);
    }
}
