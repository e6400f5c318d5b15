// The readers of dump files and probe maps: what is sound is read, anything else is refused with
// the line that is wrong.
#include "lltcov/dump_file.h"
#include "lltcov/probe_map.h"
#include "commonfunc/text_lines.h"

#include <gtest/gtest.h>

namespace
{

const std::string HEAD =
    "lltcov 1\nmodule lib demo\nproject p\nbuid Q1\npid 7\nmode 1\narea /p/a b\n";

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

std::vector<std::uint64_t> counts_of(const DumpedSource& source)
{
    std::vector<std::uint64_t> counts;
    for (const CountRun& run : source.runs) {
        counts.insert(counts.end(), run.times, run.count);
    }
    return counts;
}

} // namespace

TEST(DumpFile, IsReadWithRunsAndWithLinesOfLaterVersions)
{
    const std::string text = HEAD + "novelty 1 2\nfile 0 a_1.x.c 6 4\n0*3 4294967295 1*2\n"
                                    "file 1 b c_2.cpp 0 1\n\nfile 2 d 1 0\n1\nend\n";
    const Dump dump = read_dump(text);
    EXPECT_EQ(dump.module, "lib demo");
    EXPECT_EQ(dump.buid, "Q1");
    EXPECT_EQ(dump.area, "/p/a b");
    ASSERT_EQ(dump.sources.size(), 3U);
    EXPECT_EQ(dump.sources[0].symbol, "a_1.x");
    EXPECT_EQ(counts_of(dump.sources[0]), (std::vector<std::uint64_t>{0, 0, 0, 4294967295, 1, 1}));
    EXPECT_EQ(dump.sources[1].symbol, "b c_2");
    EXPECT_EQ(dump.sources[1].probes, 0U);
    EXPECT_EQ(dump.sources[2].symbol, "d");
}

TEST(DumpFile, ThatIsNotSoundIsRefusedWithItsLine)
{
    const std::string file = HEAD + "file 0 a.c 2 ";
    const std::vector<Refused> cases = {
        {"empty", "", 1, "no dump file"},
        {"other version", "lltcov 2\nend\n", 1, "format 1"},
        {"binary", std::string("\x7F\x45LF\0\n", 6), 1, "no dump file"},
        {"no end", HEAD, 7, "cut"},
        {"more behind the end", HEAD + "end\nfile 0 a.c 0 4\n", 9, "behind the end"},
        {"no area", "lltcov 1\nbuid Q\nend\n", 3, "work area"},
        {"no counts", file + "4\n", 8, "missing"},
        {"too few", file + "4\n1\nend\n", 9, "not 2 counts"},
        {"too many", file + "4\n1 2 3\nend\n", 9, "not 2 counts"},
        {"run too long", file + "4\n1*16777216\nend\n", 9, "not 2 counts"},
        {"runs that overflow", file + "4\n1*4294967295 1*3\nend\n", 9, "'4294967295'"},
        {"negative", file + "4\n-1 2\nend\n", 9, "'-1'"},
        {"larger than its counter", file + "4\n4294967296 2\nend\n", 9, "to 4294967295"},
        {"larger than a byte", file + "1\n256 2\nend\n", 9, "to 255"},
        {"larger than a bit", file + "0\n2 1\nend\n", 9, "to 1"},
        {"larger than any number", file + "4\n99999999999999999999999 2\nend\n", 9, "no number"},
        {"counter width", file + "2\n1 2\nend\n", 8, "2 bytes"},
        {"no numbers", HEAD + "file 0 a.c\n", 8, "missing"},
        {"order", HEAD + "file a.c 0 2 4\n", 8, "index 'a.c'"},
        {"probes without end", HEAD + "file 0 a.c 2147483647 4\n0*2147483647\nend\n", 8, "probes"},
    };
    const std::string sound = file + "4\n1 2\nend\n";
    expect_refusals(cases, sound, [](const std::string& text) { read_dump(text); });
    for (std::size_t length = 0; length < sound.size(); ++length) {
        EXPECT_THROW(read_dump(std::string_view(sound).substr(0, length)), FormatError) << length;
    }
}

TEST(ProbeMap, IsReadByPathLineAndFunction)
{
    const ProbeMap map = read_probe_map("lltprobes 1\nsource /s/a b.c\nobject /o/a.o\n"
                                        "probe 0 12,13 f /s/a b.c\nprobe 0 7 f /s/i.h\n"
                                        "probe 2 13 g /s/a b.c\nnovelty\nprobe 3 12 f /s/a b.c\n"
                                        "function g 20 /s/a b.c\nfunction h 30 /s/i.h\n",
                                        4);
    EXPECT_EQ(map.source, "/s/a b.c");
    EXPECT_EQ(map.object, "/o/a.o");
    EXPECT_EQ(map.paths, (std::vector<std::string>{"/s/a b.c", "/s/i.h"}));
    std::string lines;
    for (const MappedLine& line : map.lines) {
        lines += std::to_string(line.path) + ":" + std::to_string(line.line) + " f" +
                 std::to_string(line.function) + "\n";
    }
    EXPECT_EQ(lines, "0:12 f0\n0:12 f0\n0:13 f0\n0:13 f1\n1:7 f0\n");
    ASSERT_EQ(map.functions.size(), 2U);
    EXPECT_EQ(map.functions[0].symbol, "g");
    EXPECT_EQ(map.functions[0].probe, 2U);
    EXPECT_TRUE(map.functions[0].has_probe);
    EXPECT_FALSE(map.functions[1].has_probe);
}

TEST(ProbeMap, ThatIsNotSoundIsRefusedWithItsLine)
{
    const std::string head = "lltprobes 1\nsource /a.c\n";
    const std::vector<Refused> cases = {
        {"empty", "", 1, "no probe map"},
        {"other version", "lltprobes 9\n", 1, "format 1"},
        {"no source", "lltprobes 1\nobject /a.o\n", 2, "no source"},
        {"cut in a line", head + "probe 0 1 f /a", 3, "cut"},
        {"beyond the probes", head + "probe 3 1 f /a.c\n", 3, "from 0 to 2"},
        {"order", head + "probe 1 1 f /a.c\nprobe 0 1 f /a.c\n", 4, "behind a later one"},
        {"no lines", head + "probe 0  f /a.c\n", 3, "line number ''"},
        {"line 0", head + "probe 0 4,0 f /a.c\n", 3, "line 0"},
        {"huge line", head + "probe 0 2147483648 f /a.c\n", 3, "line number"},
        {"no path", head + "probe 0 1 f\n", 3, "path"},
        {"function without a line", head + "function f /a.c\n", 3, "line number '/a.c'"},
    };
    expect_refusals(cases, head + "probe 2 1,5 f /a.c\nfunction f 1 /a.c\n",
                    [](const std::string& text) { read_probe_map(text, 3); });
    EXPECT_THROW(read_probe_map(head + "probe 0 1 f /a.c\n", 0), FormatError);
}
