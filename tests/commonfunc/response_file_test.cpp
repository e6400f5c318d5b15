// Response files, read as the archiver itself reads them.
#include "commonfunc/response_file.h"
#include "tests/fixture.h"

using ResponseFile = TestDir;

TEST_F(ResponseFile, HoldsTheWordsThatTheArchiverTakes)
{
    const struct {
        const char *what, *text, *words; ///< "|" after each word
    } rows[] = {
        {"white space separates", "a b\tc\nd\r\ne\v\ff", "a|b|c|d|e|f|"},
        {"quotes hold together", "'a b' \"c d\" e' 'f\" \"g 'open h", "a b|c d|e f g|open h|"},
        {"a backslash takes the next byte", "a\\ b \\'c\\\" \"a\\\"b\" 'c\\'d' \"it's\" 'x\"y'",
         "a b|'c\"|a\"b|c'd|it's|x\"y|"},
        {"quotes alone are an empty word", "a '' \"\" b", "a|||b|"},
        {"a backslash at the end", "a\\", "a|"},
        {"an empty file", "", ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        write_file("r", row.text);
        std::string found;
        for (const std::string& word : with_response_files({"@none", "@", "", "@r", "b"})) {
            found += word + "|";
        }
        EXPECT_EQ(found, std::string("@none|@||") + row.words + "b|");
    }
}

TEST_F(ResponseFile, MayNameFilesAndARingOfThemEnds)
{
    write_file("r", "a @s b");
    write_file("s", "c @r");
    const std::vector<std::string> words = with_response_files({"@r"});
    ASSERT_GT(words.size(), 3U);
    EXPECT_EQ(words[0] + words[1] + words[2] + words[3], "acac");
    EXPECT_EQ(words.back(), "b");
}
