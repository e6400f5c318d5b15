#include "lltwrapper/cmd_parser.h"
#include "lltwrapper/wrapper_state.h"
#include "tests/fixture.h"
#include "tests/lltwrapper/words.h"

using CommandParser = TestDir;

TEST_F(CommandParser, OptionsAreRecordedAndTakenOut)
{
    const char* command =
        "lltwrapper gcc -objsuffix '.o||.obj' '' -binsuffix .so -objsuffix '.lo|' -artool /b/ar "
        "-arsuffix .a -c -m32 -mshort-load-bytes -m64 -artool";
    with_words(command, [](int argc, char** argv) { parser(argc, argv); });
    EXPECT_EQ(vtor_objtypes, (std::set<std::string>{"", ".lo", ".o", ".obj"}));
    EXPECT_EQ(strObjSuffix + strBinSuffix + " " + strArTools + strArSuffix, ".lo|.so ar.a");
    EXPECT_EQ(pOriginalCmd + g_str_m32m64, "gcc  -c -m32 "); // the empty word leaves its blank
}

TEST_F(CommandParser, StrReplaceAppendsAndTouchesNothingElse)
{
    char text[] = "ab\0..........";
    StrReplace("c(\"", text);
    EXPECT_EQ(std::string(text, sizeof text), std::string("abc\\(\\\"......\0", 14));
    for (int byte = 1; byte < 256; ++byte) {
        const std::string one(1, static_cast<char>(byte));
        EXPECT_EQ(escape_for_shell(one), (one.find_first_of("\" ()<>") ? "" : "\\") + one) << byte;
    }
}
