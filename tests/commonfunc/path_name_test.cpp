#include "commonfunc/path_name.h"
#include "tests/fixture.h"

#include <filesystem>

using PathName = TestDir;

TEST_F(PathName, SplitpathLeavesOutputsThatItDoesNotReach)
{
    const struct {
        const char* what;
        const char *path, *directory, *name, *extension; ///< "?" where untouched
    } rows[] = {
        {"all three parts", "/a/c.txt", "/a", "c", "txt"},
        {"no dot", "/a/b/c", "/a/b", "c", "?"},
        {"the only dot in a directory", "/a/b.d/c", "/a", "b", "d/c"},
        {"no slash", "c.txt", "c", "?", "txt"},
        {"a slash at the end", "/a/", "/a", "", "?"},
        {"dots alone", "..", ".", "?", ""},
        {"at the root", "/x.prj", "", "x", "prj"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        char directory[16] = "?", name[16] = "?", extension[16] = "?";
        QMRSplitpath(row.path, directory, nullptr, nullptr);
        Caddis_Splitpath(row.path, nullptr, name, extension);
        EXPECT_STREQ(directory, row.directory);
        EXPECT_STREQ(name, row.name);
        EXPECT_STREQ(extension, row.extension);
    }
}

TEST_F(PathName, IdentifierFormReplacesBytesByTheirCodeOrShiftsThem)
{
    const struct {
        const char *what, *name, *identifier;
    } rows[] = {
        {"a full stop", "x_Y9.c", "x_Y946c"},
        {"a blank and a hyphen", "a b-", "a32b45"},
        {"the neighbours of letters and digits", "@[`{/:", "6491961234758"},
        {"the first and last of each kind", "AZaz09", "AZaz09"},
        {"control characters", "\x01\t\x7F", "19127"},
        {"bytes from 128 on are shifted by 48", "\x80\xCF", "\xB0\xFF"},
        {"beyond 255 they begin anew", "\xFF\xDA", "/\n"},
        {"byte 208 becomes the end", "ab\xD0z", "ab"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        char out[32] = "x";
        GetInstDbName(out, row.name);
        EXPECT_STREQ(out, row.identifier);
    }
}

TEST_F(PathName, AbsolutePathKeepsWhatCanBeResolvedOfAMissingFile)
{
    write_file("f", "");
    std::filesystem::create_symlink("nowhere", "link");
    EXPECT_EQ(absolute_path(".//f"), dir + "/f");
    EXPECT_EQ(absolute_path("missing"), dir + "/missing");
    EXPECT_EQ(absolute_path("no/such/f"), dir + "/no");
    EXPECT_EQ(absolute_path("link"), dir + "/nowhere");
    EXPECT_EQ(absolute_path("f/x") + absolute_path(""), "");
}
