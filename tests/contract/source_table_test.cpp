// The bytes of source-file tables, and what the names in them say.
#include "contract/source_table.h"

#include <gtest/gtest.h>

namespace
{

/// The record's bytes, by hand: numbers of four bytes, the lowest first, and a name of 256 bytes.
std::string record_bytes()
{
    std::string name = "a_1.x.c:8";
    name.resize(256);
    return std::string("\x03\x00\x00\x00", 4) + name + std::string("\x01\x02\x00\x00", 4) +
           std::string("\x00\x00\x00\x80", 4) + std::string("\x20\x00\x00\x00", 4) +
           std::string("\xFE\xFF\xFF\xFF", 4) + std::string("\x05\x00\x00\x00", 4);
}

} // namespace

TEST(SourceTableFormat, ARecordHasTheSameBytesEverywhere)
{
    const std::vector<_SOURCEFILE_OBJECT> records = read_source_table(record_bytes());
    ASSERT_EQ(records.size(), 1U);
    const _SOURCEFILE_OBJECT& record = records[0];
    EXPECT_EQ(record.fileid, 3);
    EXPECT_EQ(source_name(record), "a_1.x.c:8");
    EXPECT_EQ(record.size, 0x201U);
    EXPECT_EQ(record.mtime, 0x80000000U);
    EXPECT_EQ(record.inststartpoint, 32);
    EXPECT_EQ(record.instnum, -2);
    EXPECT_TRUE(record.bFocus == 1 && record.bmodified == 0 && record.bCompiled == 1);
    EXPECT_EQ(bytes_of(record), record_bytes());
}

TEST(SourceTableFormat, OneWithAPartOfARecordIsDamaged)
{
    const std::string two = record_bytes() + record_bytes();
    EXPECT_EQ(read_source_table(two).size(), 2U);
    for (const unsigned int size : {0U, 1U, 279U, 281U, 559U}) {
        EXPECT_TRUE(read_source_table(two.substr(0, size)).empty()) << size;
    }
}

TEST(SourceTableFormat, ANameBeginsWithTheSymbolAndEndsWithWhatJoinsByOr)
{
    EXPECT_EQ(name_in_table("a_1", "c", 0), "a_1.c");
    EXPECT_EQ(name_in_table("a_1", "cpp", 16), "a_1.cpp:16");
    _SOURCEFILE_OBJECT record = {};
    std::string("a.b_1.c:8").copy(record.szName, sizeof record.szName);
    EXPECT_EQ(symbol_in_table(record), "a.b_1");
    std::string(256, 'x').copy(record.szName, sizeof record.szName);
    EXPECT_EQ(symbol_in_table(record), std::string(255, 'x'));
}
