#include "lltwrapper/word_size.h"
#include "lltwrapper/wrapper_state.h"
#include "tests/fixture.h"

using WordSize = TestDir;

TEST_F(WordSize, EachCallAppendsTheWordSizeAndTellsTheTool)
{
    ::setenv("TUSK_ENABLE_m32m64", "64", 1);
    strLinkName = "app";
    TUSK_SetType_m32m64("-m32x");
    EXPECT_EQ(TUSK_LINUXCADDIS_GET3264STR(), "app_m64");
    EXPECT_STREQ(std::getenv("TUSK_innerenv_m32m64"), "2");
    ::setenv("TUSK_ENABLE_m32m64", "0", 1); // read once per process
    TUSK_SetType_m32m64("-m32");
    EXPECT_EQ(TUSK_LINUXCADDIS_GET3264STR(), "app_m64_m32");
    EXPECT_STREQ(std::getenv("TUSK_innerenv_m32m64"), "1");
}
