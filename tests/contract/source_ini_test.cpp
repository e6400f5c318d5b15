// The INI file of a coverage symbol: written and read, and what is cut or missing.
#include "contract/source_ini.h"
#include "tests/fixture.h"

#include <gtest/gtest.h>

class SourceIni : public TestDir
{
};

TEST_F(SourceIni, GivesBackWhatWasWritten)
{
    const std::string text = source_ini("/p/src/a b=c.c", "/p/obj/a.o");
    EXPECT_EQ(text, "[StubFiles]\nStubFilePath1=/p/src/a b=c.c\nObjFilePath=/p/obj/a.o\n");
    write_file("s.ini", text);
    char source[260] = "-";
    char object[260] = "-";
    EXPECT_TRUE(read_source_ini("s.ini", source, object, sizeof source));
    EXPECT_STREQ(source, "/p/src/a b=c.c");
    EXPECT_STREQ(object, "/p/obj/a.o");
}

TEST_F(SourceIni, WithoutASourceIsRefusedAndOneWithoutAnObjectIsNot)
{
    char source[260] = "-";
    char object[260] = "-";
    write_file("s.ini", "[StubFiles]\nObjFilePath=/p/obj/a.o\n");
    EXPECT_FALSE(read_source_ini("s.ini", source, object, sizeof source));
    EXPECT_STREQ(object, "-");
    EXPECT_FALSE(read_source_ini("none.ini", source, object, sizeof source));
    write_file("s.ini", "[StubFiles]\nStubFilePath1=/p/a.c\n");
    EXPECT_TRUE(read_source_ini("s.ini", source, object, sizeof source));
    EXPECT_STREQ(object, "-");
}
