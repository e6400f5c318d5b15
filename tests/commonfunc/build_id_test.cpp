#include "commonfunc/build_id.h"
#include "tests/fixture.h"

TEST_F(TestDir, TheBuildIdentifierIsMadeOnceFromLocalTimeAndVersion)
{
    const std::pair<int, char> years[] = {{-1, '0'}, {0, '\0'}, {9, '9'},  {10, 'A'}, {26, 'Q'},
                                          {35, 'Z'}, {36, '1'}, {71, '1'}, {72, '2'}};
    for (const auto& [year, expected] : years) {
        EXPECT_EQ(year_character(year), expected) << year;
    }
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
