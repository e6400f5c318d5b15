// The INI file of a coverage symbol, as drivers write it; how it is read is tested with the tuples.
#include "contract/source_ini.h"

#include <gtest/gtest.h>

TEST(SourceIni, NamesSourceAndObject)
{
    EXPECT_EQ(source_ini("/p/src/a b=c.c", "/p/obj/a.o"),
              "[StubFiles]\nStubFilePath1=/p/src/a b=c.c\nObjFilePath=/p/obj/a.o\n");
}
