// Response files, read as the archiver itself reads them.
#include "commonfunc/response_file.h"
#include "tests/fixture.h"

TEST_F(TestDir, WordsAreThoseThatTheArchiverTakes)
{
    char none[] = "@none", at[] = "@", r[] = "@r", *argv[] = {nullptr, none, at, r};
    for (const auto& [text, words] : std::vector<std::pair<std::string, std::string>>{
             {"a b\tc\nd\r\ne\v\ff", "a|b|c|d|e|f|"},
             {"'a b' \"c d\" e' 'f\" \"g 'open h", "a b|c d|e f g|open h|"},
             {"a\\ b \\'c\\\" \"a\\\"b\" 'c\\'d' \"it's\" 'x\"y'", "a b|'c\"|a\"b|c'd|it's|x\"y|"},
             {"a\\", "a|"}}) {
        write_file("r", text);
        std::string found;
        for (const std::string& word : with_response_files(4, argv)) {
            found += word + "|";
        }
        EXPECT_EQ(found, "@none|@|@r|" + words);
    }
}
