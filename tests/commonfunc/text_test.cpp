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
    EXPECT_FALSE(names_project_file("/a.pr/j"));
}

TEST_F(Text, EndsWithAWholeEndOnly)
{
    EXPECT_TRUE(ends_with("lib.a", ".a"));
    EXPECT_TRUE(ends_with(".a", ".a"));
    EXPECT_FALSE(ends_with("a", ".a"));
    EXPECT_FALSE(ends_with("lib.ab", ".a"));
}

TEST_F(Text, HashIsFnv1aOf64BitsInSixteenDigits)
{
    // Values that were published with the algorithm.
    EXPECT_EQ(hex_digits(fnv1a("")), "cbf29ce484222325");
    EXPECT_EQ(hex_digits(fnv1a("a")), "af63dc4c8601ec8c");
    EXPECT_EQ(hex_digits(fnv1a("bar", fnv1a("foo"))), "85944171f73967e8");
    EXPECT_EQ(hex_digits(0xA), "000000000000000a");
}
