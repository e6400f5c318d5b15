#include "commonfunc/path_name.h"
#include "tests/fixture.h"

#include <filesystem>

TEST_F(TestDir, SplittingAPathLeavesOutputsThatItDoesNotReach)
{
    using Row = std::array<std::string, 4>;
    const Row rows[] = {{"/a/c.txt", "/a", "c", "txt"}, {"/a/b/c", "/a/b", "c", "?"},
                        {"/a/b.d/c", "/a", "b", "d/c"}, {"c.txt", "c", "?", "txt"},
                        {"/a/", "/a", "", "?"},         {"..", ".", "?", ""},
                        {"/x.prj", "", "x", "prj"}};
    for (const auto& [path, directory, name, extension] : rows) {
        char out[3][16] = {"?", "?", "?"};
        QMRSplitpath(path.c_str(), out[0], nullptr, nullptr);
        Caddis_Splitpath(path.c_str(), nullptr, out[1], out[2]);
        EXPECT_EQ((Row{path, out[0], out[1], out[2]}), (Row{path, directory, name, extension}));
    }
}

TEST_F(TestDir, IdentifierFormReplacesBytesByTheirCodeOrShiftsThem)
{
    const std::pair<const char*, const char*> rows[] = {
        {"x_Y9.c", "x_Y946c"}, {"a b-", "a32b45"},      {"@[`{/:", "6491961234758"},
        {"AZaz09", "AZaz09"},  {"\x01\t\x7F", "19127"}, {"\x80\xCF", "\xB0\xFF"},
        {"\xFF\xDA", "/\n"},   {"ab\xD0z", "ab"}};
    for (const auto& [name, expected] : rows) {
        char out[32] = "x";
        GetInstDbName(out, name);
        EXPECT_STREQ(out, expected) << name;
    }
}

TEST_F(TestDir, AbsolutePathKeepsWhatCanBeResolvedOfAMissingFile)
{
    write_file("f", "");
    std::filesystem::create_symlink("nowhere", "link");
    EXPECT_EQ(absolute_path(".//f"), dir + "/f");
    EXPECT_EQ(absolute_path("missing"), dir + "/missing");
    EXPECT_EQ(absolute_path("no/such/f"), dir + "/no");
    EXPECT_EQ(absolute_path("link"), dir + "/nowhere");
    EXPECT_EQ(absolute_path("f/x") + absolute_path(""), "");
}
