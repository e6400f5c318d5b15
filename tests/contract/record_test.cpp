// The record of an instrumented source: as bytes, and in the section of an object.
#include "contract/object_record.h"
#include "contract/record.h"
#include "tests/refusal.h"

#include <elf.h>
#include <gtest/gtest.h>

namespace
{

const std::string BODY =
    "symbol a_c_1\nsource /p/a b.c\nobject /p/a.o\nmode 1\ncommand gcc -DX='a b'\n"
    "map /re=al=/recorded\ncompiler gcc\nreader /usr/bin/gcov\narray 40 16\n"
    "version 7 1\nfunction 1 2 3 f\ncounters 0 3 0\ncounters 8 2 24\n"
    "notes 4\n";
const std::string NOTES("\n\0x\xFF", 4);

std::string record_of(const std::string& body)
{
    return "lltrecord 1 " + std::to_string(body.size()) + "\n" + body;
}

/// An object of three sections: none, the record, and the names of all. `is_wide`: their numbers
/// stand in the first section's header, as when there are too many for the file's.
std::string elf_object(bool is_64, bool is_big, bool is_wide, const std::string& record)
{
    const std::string names = std::string("\0", 1) + RECORD_SECTION + std::string("\0", 1);
    std::string file(is_64 ? sizeof(Elf64_Ehdr) : sizeof(Elf32_Ehdr), '\0');
    const auto put = [&](std::size_t at, std::uint64_t value, std::size_t size) {
        for (std::size_t i = 0; i < size; ++i) {
            file[at + i] = static_cast<char>(value >> 8 * (is_big ? size - 1 - i : i));
        }
    };
    file.replace(0, 4, ELFMAG, 4);
    file[EI_CLASS] = is_64 ? ELFCLASS64 : ELFCLASS32;
    file[EI_DATA] = is_big ? ELFDATA2MSB : ELFDATA2LSB;
    const std::size_t record_at = file.size();
    file += record + names;
    const std::size_t headers = file.size();
    const std::size_t size = is_64 ? sizeof(Elf64_Shdr) : sizeof(Elf32_Shdr);
    file.append(3 * size, '\0');
    is_64 ? put(40, headers, 8) : put(32, headers, 4); // e_shoff
    put(is_64 ? 60 : 48, is_wide ? 0 : 3, 2);          // e_shnum
    put(is_64 ? 62 : 50, is_wide ? SHN_XINDEX : 2, 2); // e_shstrndx
    if (is_wide) {
        is_64 ? put(headers + 32, 3, 8) : put(headers + 20, 3, 4); // sh_size
        put(headers + (is_64 ? 40 : 24), 2, 4);                    // sh_link
    }
    const auto section = [&](std::size_t number, std::size_t name, std::size_t at,
                             std::size_t length) {
        const std::size_t header = headers + number * size;
        put(header, name, 4);
        put(header + 4, SHT_PROGBITS, 4);
        is_64 ? put(header + 24, at, 8) : put(header + 16, at, 4);
        is_64 ? put(header + 32, length, 8) : put(header + 20, length, 4);
    };
    section(1, 1, record_at, record.size());
    section(2, 0, record_at + record.size(), names.size());
    return file;
}

} // namespace

TEST(Record, IsReadAsItWasWritten)
{
    const std::string bytes = record_of(BODY + NOTES);
    const std::vector<Record> records = read_records(bytes + bytes);
    ASSERT_EQ(records.size(), 2U);
    const Record& record = records[1];
    EXPECT_EQ(record.symbol, "a_c_1");
    EXPECT_EQ(record.source, "/p/a b.c");
    EXPECT_EQ(record.compile_command, "gcc -DX='a b'");
    EXPECT_EQ(record.path_maps[0].first, "/re=al");
    EXPECT_EQ(record.path_maps[0].second, "/recorded");
    EXPECT_EQ(record.or_bytes, 16U);
    EXPECT_TRUE(record.has_checksum);
    ASSERT_EQ(record.functions.size(), 1U);
    EXPECT_EQ(record.functions[0].cfg_checksum, 3U);
    EXPECT_EQ(record.functions[0].counters[1].offset, 24U);
    EXPECT_EQ(record.notes, NOTES);
    EXPECT_EQ(to_bytes(record), bytes);
    EXPECT_TRUE(read_records("").empty());
}

TEST(Record, OfClangHasHashesOf64BitsAndNoVersion)
{
    const std::string bytes = record_of(
        "symbol a_c_1\nsource /p/a.c\nobject /p/a.o\nmode 2\ncommand clang\ncompiler clang\n"
        "reader /usr/bin/llvm-cov\narray 16 0\nprofile 18446744073709551615 f g\n"
        "counters 0 2 0\nnotes 0\n");
    const std::vector<Record> records = read_records(bytes);
    ASSERT_EQ(records.size(), 1U);
    ASSERT_EQ(records[0].functions.size(), 1U);
    EXPECT_EQ(records[0].compiler, CounterSource::clang);
    EXPECT_EQ(records[0].functions[0].hash, UINT64_MAX);
    EXPECT_EQ(records[0].functions[0].name, "f g");
    EXPECT_EQ(to_bytes(records[0]), bytes);
}

TEST(Record, ThatIsNotSoundIsRefused)
{
    const auto changed = [](const std::string& from, const std::string& to) {
        std::string body = BODY + NOTES;
        body.replace(body.find(from), from.size(), to);
        return record_of(body);
    };
    const struct {
        const char* what;
        std::string bytes;
        const char* says;
    } rows[] = {
        {"another format", "lltrecord 2 0\n", "format 1"},
        {"no record", "nonsense\n", "format 1"},
        {"bytes after the record", record_of(BODY + NOTES) + "\n", "format 1"},
        {"notes cut off", record_of(BODY), "bytes of notes"},
        {"no notes", record_of("symbol a\n"), "without its notes"},
        {"no symbol", changed("symbol a_c_1\n", ""), "missing"},
        {"counters beyond the array", changed("counters 8 2 24", "counters 8 3 24"),
         "not in the array"},
        {"an offset that wraps", changed("counters 8 2 24", "counters 8 2 4294967295"), "offset"},
        {"counters within others", changed("counters 8 2 24", "counters 8 2 20"),
         "not in the array"},
        {"counters without a function", changed("function 1 2 3 f\n", ""), "of no function"},
        {"a smaller array after them",
         changed("counters 8 2 24\n", "counters 8 2 24\narray 16 0\n"), "after counters"},
        {"an end beyond the array", changed("array 40 16", "array 40 48"), "size of its end"},
        {"half a counter", changed("array 40 16", "array 41 16"), "whole counters"},
        {"half a map", changed("map /re=al=/recorded", "map /real"), "no '='"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        EXPECT_NE(refusal(read_records, row.bytes).find(row.says), std::string::npos)
            << refusal(read_records, row.bytes);
    }
    const std::string sound = record_of(BODY + NOTES);
    EXPECT_EQ(refusal(read_records, sound), "");
    for (std::size_t size = 1; size < sound.size(); ++size) {
        EXPECT_NE(refusal(read_records, sound.substr(0, size)), "") << size;
    }
}

TEST(Record, IsFoundInObjectsOfEveryClassAndByteOrder)
{
    const struct {
        const char* what;
        bool is_64, is_big, is_wide;
    } rows[] = {
        {"32 bits, little endian", false, false, false},
        {"32 bits, big endian", false, true, false},
        {"64 bits, little endian", true, false, false},
        {"64 bits, big endian", true, true, false},
        {"32 bits, more sections than the header counts", false, false, true},
        {"64 bits, more sections than the header counts", true, false, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        const std::string object = elf_object(row.is_64, row.is_big, row.is_wide, "the record");
        EXPECT_EQ(record_section(object), "the record");
        for (std::size_t size = 0; size < object.size(); ++size) {
            record_section(object.substr(0, size)); // returns
        }
    }
    EXPECT_EQ(record_section("no object"), "");
    EXPECT_EQ(record_section(""), "");
}
