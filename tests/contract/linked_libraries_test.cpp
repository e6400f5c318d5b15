// The list of a link's libraries: written and read, and what is refused.
#include "contract/linked_libraries.h"
#include "tests/refusal.h"

#include <gtest/gtest.h>

namespace
{

const std::string LIST = "lltlibraries 1\n"
                         "library /p/debug/lib a.a\narea /p/liba/codemeasure\nbuid Q1\n"
                         "symbol a_1\nsymbol b_2\n"
                         "library /p/libc.a\narea /p/libc/codemeasure\nbuid Q2\n";

} // namespace

TEST(LinkedLibraries, AreReadWithLinesOfLaterVersionsAndWrittenAgain)
{
    const std::vector<LinkedLibrary> libraries = read_linked_libraries(LIST + "novelty x\n");
    ASSERT_EQ(libraries.size(), 2U);
    EXPECT_EQ(libraries[0].path, "/p/debug/lib a.a");
    EXPECT_EQ(libraries[1].area, "/p/libc/codemeasure");
    EXPECT_EQ(libraries[0].symbols, (std::vector<std::string>{"a_1", "b_2"}));
    EXPECT_EQ(to_text(libraries), LIST);
    EXPECT_TRUE(read_linked_libraries(to_text({})).empty());
}

TEST(LinkedLibraries, OfAnotherFormatOrWithoutALibraryAreRefused)
{
    for (const char* text : {"", "lltlibraries 2\n", "library /p/a.a\n"}) {
        EXPECT_EQ(refusal(read_linked_libraries, text).substr(0, 2), "1:") << text;
    }
    EXPECT_EQ(refusal(read_linked_libraries, "lltlibraries 1\nbuid Q1\n").substr(0, 2), "2:");
}
