#include "commonfunc/Caddis_func.h"
#include "tests/fixture.h"

using UsageContext = TestDir;

TEST_F(UsageContext, StatusFollowsThreeVariables)
{
    const struct {
        const char *what, *coverage, *test_case, *generation;
        unsigned status; ///< 1 coverage, 2 test cases, 4 generation; 5 before
    } rows[] = {
        {"empty values, and numbers other than 1", "", "2", "x", 0},
        {"a word for coverage", "no", "", "", 0},
        {"test cases alone", "0", "1", "-1", 2},
        {"all three", "2", "1", "1", 7},
        {"other numbers change nothing", "1", "2", "-1", 5},
        {"a number with a tail", "0", "1x", "1", 6},
    };
    CUsageContext& context = *CUsageContext::GetInstance();
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        ::setenv("USE_TUSK_COVERAGE", row.coverage, 1);
        ::setenv("USE_TUSK_TESTCASE", row.test_case, 1);
        ::setenv("ATG_ENABLE", row.generation, 1);
        context.m_iLLTStatus = 5;
        context.Check_LLT_STATUS();
        EXPECT_EQ(context.IsEnableCVG() + context.IsEnableTC() + context.IsEnableATG(), row.status);
    }
}

TEST_F(UsageContext, SplittingAppendsItemsAndReplacesPairs)
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
