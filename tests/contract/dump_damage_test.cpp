// Damaged dump files: whatever is in them, no count comes out that is not there, and little is read
// of a file that is none.
#include "commonfunc/text_lines.h"
#include "contract/dump_file.h"
#include "contract/dump_format.h"

#include <cstring>
#include <gtest/gtest.h>

namespace
{

const std::string HEAD = "lltcov 2\nmodule m\nbuid Q1\narea /p\ntest t\norder little\n";

/// What a dump counts, in the order of the file; nothing of one that is refused.
std::vector<std::uint64_t> counts_of(const std::string& bytes)
{
    std::vector<std::uint64_t> counts;
    try {
        const Dump dump = read_dump(bytes);
        counts.push_back(dump.runs);
        for (const DumpedSource& source : dump.sources) {
            counts.insert(counts.end(), source.counters.begin(), source.counters.end());
        }
    } catch (const FormatError&) {
        return {};
    }
    return counts;
}

} // namespace

TEST(DumpDamage, OfOneByteLeavesTheCountsOfTheFileOrNone)
{
    const std::vector<std::uint64_t> words = {1, 2, 0xFF00, 4, 5};
    const std::string head = HEAD + "file 0 a.c 16\nfile 1 b.c:8 16\ncounts 40\n";
    std::string sound = head;
    for (const std::uint64_t word : words) {
        for (int shift = 0; shift < 64; shift += 8) {
            sound += static_cast<char>(word >> shift & 0xFF);
        }
    }
    ASSERT_EQ(counts_of(sound), words);
    int taken = 0;
    for (std::size_t at = 0; at < sound.size(); ++at) {
        EXPECT_TRUE(at == 0 || counts_of(sound.substr(0, at)).empty()) << "cut at " << at;
        const auto longer = counts_of(sound.substr(0, at) + "0" + sound.substr(at));
        EXPECT_TRUE(longer.empty() || (at < head.size() && longer == words)) << "longer at " << at;
        for (int value = 0; value < 256; ++value) {
            std::string changed = sound;
            changed[at] = static_cast<char>(value);
            std::vector<std::uint64_t> expected = words;
            if (at >= head.size()) {
                const std::size_t place = at - head.size();
                const int shift = static_cast<int>(place % 8 * 8);
                expected[place / 8] &= ~(0xFFULL << shift);
                expected[place / 8] |= static_cast<std::uint64_t>(value) << shift;
            }
            const std::vector<std::uint64_t> counts = counts_of(changed);
            EXPECT_TRUE(counts == expected || (at < head.size() && counts.empty()))
                << at << " is " << value;
            taken += at < head.size() && counts == expected ? 1 : 0;
        }
    }
    EXPECT_GT(taken, 256); // names may be anything
}

TEST(DumpDamage, LittleIsReadOfAFileThatIsNone)
{
    constexpr std::uint64_t GIB = 1ULL << 30;
    const struct {
        const char* start;
        const char* rest; ///< repeated
        std::uint64_t size;
        std::uint64_t largest; ///< most that may be read
        const char* says;
    } cases[] = {
        {"", "0 ", 200'000'000, 1 << 14, "no dump file"},
        {"lltcov 2\n", "\0", 5 * GIB, 0, "larger than any dump"},
        {"lltcov 2\n", "0 ", 2 * GIB, DUMP_MAX_HEADER, "header is larger"},
        {"lltcov 2\n", "0\n", 2 * GIB, DUMP_MAX_HEADER, "header is larger"},
        {"lltcov 2\narea /a\norder big\nfile 0 a.c 2147483640\ncounts 2147483648\n", "0\n", 2 * GIB,
         1 << 14, "not 2147483648 bytes"},
    };
    for (const auto& row : cases) {
        std::uint64_t read = 0;
        const auto bytes = [&](std::uint64_t offset, char* to, std::size_t size) {
            read += size;
            for (std::size_t i = 0; i < size; ++i) {
                const std::uint64_t at = offset + i;
                const std::size_t length = std::strlen(row.start);
                to[i] = at < length ? row.start[at] : row.rest[(at - length) % 2];
            }
        };
        try {
            DumpReader(row.size, bytes);
            ADD_FAILURE() << row.says;
        } catch (const FormatError& error) {
            EXPECT_NE(std::string(error.what()).find(row.says), std::string::npos) << error.what();
        }
        EXPECT_LE(read, row.largest) << row.says;
    }
}
