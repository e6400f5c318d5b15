// Response files, read as the archiver itself reads them.
#include "commonfunc/response_file.h"
#include "tests/fixture.h"

TEST_F(TestDir, WordsAreThoseThatTheArchiverTakes)
{
    for (const auto& [text, words] : std::vector<std::pair<std::string, std::string>>{
             {"a b\tc\nd\r\ne\v\ff", "a|b|c|d|e|f|"},
             {"'a b' \"c d\" e' 'f\" \"g 'open h", "a b|c d|e f g|open h|"},
             {"a\\ b \\'c\\\" \"a\\\"b\" 'c\\'d' \"it's\" 'x\"y'", "a b|'c\"|a\"b|c'd|it's|x\"y|"},
             {"a\\", "a|"},
             {"", ""}}) {
        write_file("r", text);
        std::string found;
        for (const std::string& word : with_response_files({"@none", "@", "", "@r", "b"})) {
            found += word + "|";
        }
        EXPECT_EQ(found, "@none|@||" + words + "b|");
    }
}

TEST_F(TestDir, FilesMayNameFilesAndARingOfThemEnds)
{
    write_file("r", "a @s b");
    write_file("s", "c @r");
    const std::vector<std::string> words = with_response_files({"@r"});
    ASSERT_GT(words.size(), 3U);
    EXPECT_EQ(words[0] + words[1] + words[2] + words[3], "acac");
    EXPECT_EQ(words.back(), "b");
}
