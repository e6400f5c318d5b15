#include "commonfunc/Caddis_func.h"
#include "tests/fixture.h"

TEST_F(TestDir, UsageStatusFollowsThreeVariables)
{
    const std::tuple<const char*, const char*, const char*, unsigned> rows[] = {
        {"", "2", "x", 0},  {"no", "", "", 0},   {"0", "1", "-1", 2},
        {"2", "1", "1", 7}, {"1", "2", "-1", 5}, {"0", "1x", "1", 6}};
    CUsageContext& context = *CUsageContext::GetInstance();
    for (const auto& [coverage, test_case, atg, expected] : rows) {
        ::setenv("USE_TUSK_COVERAGE", coverage, 1);
        ::setenv("USE_TUSK_TESTCASE", test_case, 1);
        ::setenv("ATG_ENABLE", atg, 1);
        context.m_iLLTStatus = 5;
        context.Check_LLT_STATUS();
        EXPECT_EQ(context.IsEnableCVG() + context.IsEnableTC() + context.IsEnableATG(), expected);
    }
}

TEST_F(TestDir, SplittingAppendsItemsAndReplacesPairs)
{
    std::vector<std::string> items = {"old"};
    strsplit_v(":a::b:", ':', items);
    strsplit_v(nullptr, ':', items);
    strsplit_v("c", '\0', items);
    EXPECT_EQ(items, (std::vector<std::string>{"old", "", "a", "", "b", "", "", ""}));
    std::map<std::string, std::string> pairs = {{"a", "old"}},
                                       expected = {{"", ""}, {"a", "1"}, {"b", ""}, {"d", "3,4"}};
    EXPECT_EQ(strsplit_m("", ':', ',', pairs) + strsplit_m("a,1:b:c,3", ':', ',', pairs), 0);
    EXPECT_EQ(strsplit_m("d,1:b,:d,3,4:,", ':', ',', pairs), 1);
    EXPECT_EQ(pairs, expected);
}
