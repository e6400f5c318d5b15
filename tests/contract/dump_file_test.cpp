// The reader of dump files: what is sound is read, anything else is refused with the line that is
// wrong.
#include "contract/dump_file.h"
#include "tests/refusal.h"

#include <gtest/gtest.h>

namespace
{

const std::string HEAD =
    "lltcov 2\nmodule lib demo\nproject p\nbuid Q1\nmode 1\narea /p/a b\norder little\n";

/// The bytes of a text, which may hold NULs.
template <std::size_t N> std::string bytes(const char (&text)[N])
{
    return std::string(text, N - 1);
}

} // namespace

TEST(DumpFile, IsReadWithLinesOfLaterVersions)
{
    const std::string text = HEAD + "novelty 1 2\nfile 0 a_1.x.c 16\nfile 1 b c_2.cpp 0\n" +
                             "test one two\nfile 2 d.c:8 8\ncounts 32\n" +
                             bytes("\x02\x01\0\0\0\0\0\0\xFF\xFE\xFD\xFC\xFB\xFA\xF9\xF8"
                                   "\0\0\0\0\x01\0\0\0\x0A\0\0\0\0\0\0\0");
    const Dump dump = read_dump(text);
    EXPECT_EQ(dump.module, "lib demo");
    EXPECT_EQ(dump.buid, "Q1");
    EXPECT_EQ(dump.area, "/p/a b");
    EXPECT_EQ(dump.test, "one two");
    EXPECT_EQ(dump.runs, 0x102U);
    ASSERT_EQ(dump.sources.size(), 3U);
    EXPECT_EQ(dump.sources[0].symbol, "a_1.x");
    EXPECT_EQ(dump.sources[0].counters,
              (std::vector<std::uint64_t>{0xF8F9FAFBFCFDFEFF, 0x100000000}));
    EXPECT_EQ(dump.sources[1].symbol, "b c_2");
    EXPECT_TRUE(dump.sources[1].counters.empty());
    EXPECT_EQ(dump.sources[2].symbol, "d");
    EXPECT_EQ(dump.sources[2].counters, std::vector<std::uint64_t>{10});
}

TEST(DumpFile, OfAMachineOfTheOtherByteOrderCountsTheSame)
{
    const Dump dump = read_dump("lltcov 2\narea /a\norder big\nfile 0 a.c 8\ncounts 16\n" +
                                bytes("\0\0\0\0\0\0\0\x03\x01\x02\x03\x04\x05\x06\x07\x08"));
    EXPECT_EQ(dump.runs, 3U);
    EXPECT_EQ(dump.test, "");
    EXPECT_EQ(dump.sources.at(0).counters, std::vector<std::uint64_t>{0x0102030405060708});
}

TEST(DumpFile, IsMovedWithAnotherTestAndNothingElseChanged)
{
    const std::string rest =
        "order big\nnovelty x\nfile 0 area.c 8\ncounts 16\n" + bytes("\narea 1\n\ntest 2\n");
    const std::string text = "lltcov 2\nmodule area\narea /p/a b\n";
    for (const std::string& before : {std::string(), std::string("test old one\n")}) {
        EXPECT_EQ(moved_dump(text + before + rest, "/q", ""),
                  "lltcov 2\nmodule area\narea /q\n" + rest);
        EXPECT_EQ(moved_dump(text + before + rest, "/q", "m/new"),
                  "lltcov 2\nmodule area\narea /q\ntest m/new\n" + rest);
    }
}

TEST(DumpFile, ThatIsEmptyIsOfNoRun)
{
    const Dump dump = read_dump("");
    EXPECT_EQ(dump.runs, 0U);
    EXPECT_TRUE(dump.sources.empty());
}

TEST(DumpFile, ThatIsNotSoundIsRefusedWithItsLine)
{
    const std::string word(8, '\1');
    const std::string file = HEAD + "file 0 a.c ";
    const std::string sound = file + "8\ncounts 16\n" + word + word;
    const struct {
        const char* what;
        std::string text;
        const char *line, *says;
    } rows[] = {
        {"one line end", "\n", "1: ", "no dump file"},
        {"other version", "lltcov 1\nend\n", "1: ", "format 2"},
        {"binary", bytes("\x7F\x45LF\0\n"), "1: ", "no dump file"},
        {"no counts", HEAD, "7: ", "cut"},
        {"cut in the header", HEAD + "counts 8", "8: ", "cut"},
        {"no word", file + "8\ncounts 16\n", "9: ", "not 16 bytes"},
        {"one byte less", sound.substr(0, sound.size() - 1), "9: ", "not 16 bytes"},
        {"one byte more", sound + "\n", "9: ", "not 16 bytes"},
        {"more in the line", HEAD + "counts 8 9\n" + word, "8: ", "not 8 bytes"},
        {"sum too small", file + "8\ncounts 8\n" + word, "9: ", "add up to 8"},
        {"sum too large", file + "8\ncounts 24\n" + word + word + word, "9: ", "add up to 24"},
        {"no area", "lltcov 2\norder big\ncounts 8\n" + word, "3: ", "work area"},
        {"no order", "lltcov 2\narea /a\ncounts 8\n" + word, "3: ", "byte order"},
        {"other order", "lltcov 2\narea /a\norder middle\n", "3: ", "byte order"},
        {"half a counter", file + "12\ncounts 20\n", "8: ", "whole counters"},
        {"negative", file + "-8\ncounts 0\n", "8: ", "'-8'"},
        {"no size", HEAD + "file 0 a.c\n", "8: ", "missing"},
        {"no index", HEAD + "file a.c 0 8\n", "8: ", "index 'a.c'"},
        {"an array too large", file + "2147483648\n", "8: ", "to 2147483640"},
        {"arrays too large", file + "2147483632\nfile 1 b.c 16\n", "9: ", "to 8"},
        {"a size that overflows", file + "18446744073709551616\n", "8: ", "no number"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        const std::string says = refusal(read_dump, row.text);
        EXPECT_EQ(says.rfind(row.line, 0), 0U) << says;
        EXPECT_NE(says.find(row.says), says.npos) << says;
    }
    EXPECT_EQ(refusal(read_dump, sound), "");
}
