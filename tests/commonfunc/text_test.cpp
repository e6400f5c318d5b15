#include "commonfunc/text.h"
#include "tests/fixture.h"

using Text = TestDir;

TEST_F(Text, BoundedCopyFillsWithNulAndEndsInNul)
{
    const struct {
        const char* what;
        int size;
        std::string copy; ///< of "ab" into 5 bytes, "x" where untouched
    } rows[] = {
        {"filled up with NUL", 4, {"ab\0\0x", 5}},
        {"cut", 2, {"a\0xxx", 5}},
        {"room for the NUL alone", 1, {"\0xxxx", 5}},
        {"no room", 0, "xxxxx"},
        {"a negative size", -1, "xxxxx"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        std::string dst(5, 'x');
        QMRStrcpy(&dst[0], "ab", row.size);
        QMRStrcpy(&dst[0], nullptr, 5);
        EXPECT_EQ(dst, row.copy);
    }
}

TEST_F(Text, ComparesAsciiLettersOfEitherCase)
{
    EXPECT_TRUE(equals_nocase("aZ", "Az"));
    EXPECT_FALSE(equals_nocase("ab", "a"));
    EXPECT_FALSE(equals_nocase("\xC4", "\xE4"));
    EXPECT_TRUE(names_project_file("/a.PrJ.d/b"));
}
