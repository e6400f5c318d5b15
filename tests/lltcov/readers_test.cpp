// The reader of dump files: what is sound is read, anything else is refused with the line that is
// wrong.
#include "lltcov/dump_file.h"

#include "commonfunc/text_lines.h"

#include <gtest/gtest.h>

namespace
{

const std::string HEAD = "lltcov 2\nmodule lib demo\nproject p\nbuid Q1\nmode 1\narea /p/a b\n";

/// The line of a text's error, or 0, and what it says.
template <typename Read> std::pair<int, std::string> refusal(const std::string& text, Read read)
{
    try {
        read(text);
    } catch (const FormatError& error) {
        return {error.line, error.what()};
    }
    return {0, ""};
}

struct Refused {
    const char* name;
    std::string text;
    int line;
    const char* says;
};

template <typename Read>
void expect_refusals(const std::vector<Refused>& cases, const std::string& sound, Read read)
{
    for (const Refused& refused : cases) {
        const auto [line, says] = refusal(refused.text, read);
        EXPECT_EQ(line, refused.line) << refused.name;
        EXPECT_NE(says.find(refused.says), says.npos) << refused.name << ": " << says;
    }
    ASSERT_EQ(refusal(sound, read).first, 0);
    for (std::size_t at = 0; at < sound.size(); ++at) {
        std::string mixed_up = sound;
        mixed_up[at] = '\xFF';
        refusal(mixed_up, read); // refused or not, it returns
    }
}

/// A word of eight bytes, lowest first.
std::string word(std::uint64_t value)
{
    std::string bytes;
    for (int i = 0; i < 8; ++i) {
        bytes += static_cast<char>(value >> 8 * i);
    }
    return bytes;
}

} // namespace

TEST(DumpFile, IsReadWithLinesOfLaterVersions)
{
    const std::string text = HEAD +
                             "test t 1\norder little\nnovelty 1 2\nfile 0 a_1.x.c 16\n"
                             "file 1 b c_2.cpp:8 0\nfile 2 d 8\ncounts 32\n" +
                             word(3) + word(5) + word(1ULL << 60) + word(7);
    const Dump dump = read_dump(text);
    EXPECT_EQ(dump.module, "lib demo");
    EXPECT_EQ(dump.buid, "Q1");
    EXPECT_EQ(dump.area, "/p/a b");
    EXPECT_EQ(dump.test, "t 1");
    EXPECT_EQ(dump.runs, 3U);
    ASSERT_EQ(dump.sources.size(), 3U);
    EXPECT_EQ(dump.sources[0].symbol, "a_1.x");
    EXPECT_EQ(dump.sources[0].counters, (std::vector<std::uint64_t>{5, 1ULL << 60}));
    EXPECT_EQ(dump.sources[1].symbol, "b c_2");
    EXPECT_TRUE(dump.sources[1].counters.empty());
    EXPECT_EQ(dump.sources[2].symbol, "d");
    EXPECT_EQ(dump.sources[2].counters, (std::vector<std::uint64_t>{7}));
    EXPECT_EQ(read_dump("").runs, 0U);
}

TEST(DumpFile, OfTheOtherByteOrderGivesTheSameCounts)
{
    const std::string text = HEAD + "order big\nfile 0 a.c 8\ncounts 16\n" +
                             std::string("\0\0\0\0\0\0\0\2\0\0\0\0\0\0\1\4", 16);
    const Dump dump = read_dump(text);
    EXPECT_EQ(dump.runs, 2U);
    EXPECT_EQ(dump.sources[0].counters, (std::vector<std::uint64_t>{260}));
}

TEST(DumpFile, ThatIsNotSoundIsRefusedWithItsLine)
{
    const std::string file = HEAD + "order little\nfile 0 a.c ";
    const std::string end = "counts 16\n" + word(1) + word(2);
    const std::vector<Refused> cases = {
        {"other version", "lltcov 1\nend\n", 1, "format 2"},
        {"binary", std::string("\x7F\x45LF\0\n", 6), 1, "no dump file"},
        {"no counts", file + "8\n", 8, "cut"},
        {"no area", "lltcov 2\nbuid Q\norder little\ncounts 8\n" + word(1), 4, "work area"},
        {"too few", file + "8\n" + end.substr(0, end.size() - 1), 9, "16 bytes"},
        {"too many", file + "8\n" + end + "x", 9, "16 bytes"},
        {"another sum", file + "16\n" + end, 9, "24 bytes"},
        {"half a counter", file + "12\n" + end, 8, "whole counters"},
        {"no size", file + "x\n" + end, 8, "size 'x'"},
        {"no numbers", HEAD + "file 0 a.c\n", 7, "number"},
    };
    const std::string sound = file + "8\n" + end;
    expect_refusals(cases, sound, [](const std::string& text) { read_dump(text); });
    for (std::size_t length = 1; length < sound.size(); ++length) {
        EXPECT_THROW(read_dump(std::string_view(sound).substr(0, length)), FormatError) << length;
    }
}
