#include "commonfunc/build_id.h"
#include "tests/fixture.h"

using BuildIdentifier = TestDir;

TEST_F(BuildIdentifier, BeginsWithTheFirstDigitOfTheYearInBase36)
{
    const struct {
        const char* what;
        int years; ///< since 2000
        char digit;
    } rows[] = {
        {"clock before 2000", -1, '0'},    {"no digit in 2000", 0, '\0'},
        {"last decimal digit", 9, '9'},    {"first letter", 10, 'A'},
        {"a letter between", 26, 'Q'},     {"last letter", 35, 'Z'},
        {"two digits from 2036", 36, '1'}, {"last year of 1", 71, '1'},
        {"first year of 2", 72, '2'},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(year_character(row.years), row.digit) << row.what;
    }
}

TEST_F(BuildIdentifier, IsMadeOnceFromLocalTimeAndProductVersion)
{
    ::setenv("TZ", "EAST-9", 1);
    const std::time_t east = std::time(nullptr) + 32400;
    std::tm made = *std::gmtime(&east);
    ::setenv("PRODUCT_VERSION", "", 1);
    EXPECT_STREQ(::strptime(TUSK_Build_GetBUID() + 1, "%m%d%H%M%S", &made), "");
    EXPECT_EQ(g_szBuildID[0], year_character(made.tm_year - 100));
    EXPECT_LE(std::abs(::timegm(&made) - east), 5);
    ::setenv("PRODUCT_VERSION", std::string(300, 'v').c_str(), 1);
    EXPECT_EQ(std::string(TUSK_Build_GetBUID()).size(), 11U);
    g_szBuildID[0] = '\0';
    EXPECT_EQ(std::string(TUSK_Build_GetBUID()).substr(11), "_" + std::string(247, 'v'));
}
