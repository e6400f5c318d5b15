// The model: how counts of probes, objects and runs become those of lines and functions.
#include "lltcov/console.h"
#include "lltcov/coverage.h"

#include <gtest/gtest.h>

TEST(Coverage, RunsAddUpAndStayAtTheLargestCount)
{
    std::vector<std::uint64_t> counts = {5, MAX_COUNT - 1, 0};
    DumpedSource run;
    run.counters = {2, 2, 7};
    add_run(counts, run);
    EXPECT_EQ(counts, (std::vector<std::uint64_t>{7, MAX_COUNT, 7}));
    EXPECT_EQ(sum_of_counts(MAX_COUNT, MAX_COUNT), MAX_COUNT);
    EXPECT_EQ(sum_of_counts(0, UINT64_MAX), MAX_COUNT);
}

TEST(Coverage, OfALineIsItsLargestProbeSummedOverFunctionsAndObjects)
{
    // Line 3 has probes 0 and 1 in f, and probe 2 in its caller g. i.h is not shown.
    const ProbeMap map = read_probe_map("lltprobes 1\nsource /a.c\n"
                                        "probe 0 3,4 f /a.c\nprobe 1 3 f /a.c\nprobe 2 3 g /a.c\n"
                                        "probe 3 9 g /a.c\nprobe 3 1 g /i.h\n"
                                        "function f 3 /a.c\nfunction g 8 /a.c\nfunction h 1 /i.h\n",
                                        4);
    Coverage coverage;
    add_object(coverage, map, {5, 7, 20, 0}, {true, false});
    add_object(coverage, map, {100, 0, 0, 0}, {true, false});
    ASSERT_EQ(coverage.size(), 1U);
    const SourceCoverage& source = coverage["/a.c"];
    EXPECT_EQ(source.lines,
              (std::map<std::uint32_t, std::uint64_t>{{3, 7 + 20 + 100}, {4, 105}, {9, 0}}));
    EXPECT_EQ(source.functions.at("f").count, 105U);
    EXPECT_EQ(source.functions.at("g").count, 20U);
    EXPECT_EQ(source.functions.at("g").line, 8U);
    const Rates rates = rates_of(coverage);
    EXPECT_EQ(rates.lines.hit, 2U);
    EXPECT_EQ(rates.lines.total, 3U);
    EXPECT_EQ(rates.functions.hit, 2U);
    EXPECT_EQ(rates.functions.total, 2U);
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
