// The model: how what runs and objects count becomes one.
#include "lltcov/common/console.h"
#include "lltcov/report/coverage.h"
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
    EXPECT_EQ(a.lines, (std::map<std::uint32_t, std::uint64_t>{{3, 107}, {4, 5}, {9, 0}}));
    EXPECT_EQ(a.functions.at("f").count, 107U);
    EXPECT_EQ(a.functions.at("f").line, 2U);
    const LineBlock& block = a.blocks.at(3).at("f");
    EXPECT_EQ(block.count, 107U);
    ASSERT_EQ(block.branches.size(), 3U);
    EXPECT_EQ(block.branches[0].count, 5U);
    EXPECT_EQ(block.branches[1].count, 102U);
    EXPECT_TRUE(block.branches[2].is_throw);
    ASSERT_EQ(block.conditions.size(), 1U);
    EXPECT_EQ(block.conditions[0].terms,
              (std::vector<std::pair<bool, bool>>{{true, false}, {false, true}}));

    const Rates rates = rates_of(Coverage{{"/a.c", a}, {"/b.c", b}});
    const std::pair<Rate, Rate> cases[] = {
        {rates.lines, {2 + 1, 3 + 2}},
        {rates.functions, {1 + 1, 2 + 1}},
        {rates.branches, {3 + 2, 4 + 4}},
        {rates.conditions, {2 + 1, 4 + 4}},
    };
    for (const auto& [rate, expected] : cases) {
        EXPECT_EQ(rate.hit, expected.hit);
        EXPECT_EQ(rate.total, expected.total);
    }
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
