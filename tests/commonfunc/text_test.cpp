#include "commonfunc/text.h"
#include "tests/fixture.h"

TEST_F(TestDir, BoundedCopyFillsWithNulAndEndsInNul)
{
    const std::pair<int, std::string> rows[] = {
        {4, {"ab\0\0x", 5}}, {2, {"a\0xxx", 5}}, {1, {"\0xxxx", 5}}, {0, "xxxxx"}, {-1, "xxxxx"}};
    for (const auto& [size, expected] : rows) {
        std::string dst(5, 'x');
        QMRStrcpy(&dst[0], "ab", size);
        QMRStrcpy(&dst[0], nullptr, 5);
        EXPECT_EQ(dst, expected);
    }
    EXPECT_TRUE(equals_nocase("aZ", "Az") && names_project_file("/a.PrJ.d/b"));
    EXPECT_FALSE(equals_nocase("ab", "a") || equals_nocase("\xC4", "\xE4"));
}
