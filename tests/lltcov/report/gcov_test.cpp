// From counters to lines: the data file, the choice of gcov, what it says, and where the sources
// are.
#include "commonfunc/file_tree.h"
#include "lltcov/report/gcov_choice.h"
#include "lltcov/report/gcov_files.h"
#include "lltcov/report/gcov_json.h"
#include "lltcov/report/gcov_reader.h"
#include "lltcov/report/recorded_path.h"
#include "tests/fixture.h"

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <sys/stat.h>

namespace
{

std::string bytes_of(const std::vector<std::uint32_t>& words)
{
    std::string bytes(words.size() * 4, '\0');
    std::memcpy(&bytes[0], words.data(), bytes.size());
    return bytes;
}

/// "LINE=COUNT" of each line, with "[COUNT...]" of its branches by function.
std::string text_of(const SourceCoverage& source)
{
    std::string text;
    for (const auto& [line, count] : source.lines) {
        text += std::to_string(line) + "=" + std::to_string(count);
        const auto blocks = source.blocks.find(line);
        if (blocks != source.blocks.end()) {
            for (const auto& block : blocks->second) {
                text += "[";
                for (const Branch& branch : block.second.branches) {
                    text += (text.back() == '[' ? "" : " ") + std::to_string(branch.count);
                }
                text += "]";
            }
        }
        text += " ";
    }
    return text;
}

constexpr std::uint32_t VERSION_11 = 'B' << 24 | '1' << 16 | '4' << 8 | '*';
constexpr std::uint32_t VERSION_12 = 'B' << 24 | '2' << 16 | '2' << 8 | '*';

class GcovTest : public TestDir
{
protected:
    void add_program(const std::string& name, const std::string& script)
    {
        std::filesystem::create_directories(dir + "/bin");
        write_file(dir + "/bin/" + name, "#!/bin/sh\n" + script + "\n");
        std::filesystem::permissions(dir + "/bin/" + name, std::filesystem::perms::owner_all);
    }

    Findings findings_;
};

} // namespace

TEST(DataFile, HasTheWordsOfTheCompilersVersion)
{
    Record record;
    record.functions = {{"f", 11, 12, 13, 0, {{0, 2, 8}, {8, 1, 0}}}, {"g", 21, 22, 23, 0, {}}};
    record.array_bytes = 24;
    const Counters counters = {7, 0x500000003, 9};
    record.version = VERSION_12;
    record.has_checksum = true;
    EXPECT_EQ(
        data_file(record, counters, 4),
        bytes_of({0x67636461, VERSION_12, 0,  0,  0xa1000000, 8,          4,  INT32_MAX,          //
                  0x01000000, 12,         11, 12, 13,         0x01a10000, 16, 3,         5, 9, 0, //
                  0x01b10000, 8,          7,  0,  0x01000000, 12,         21, 22,        23}));
    record.version = VERSION_11;
    record.has_checksum = false;
    EXPECT_EQ(
        data_file(record, counters, 4),
        bytes_of({0x67636461, VERSION_11, 0,  0xa1000000, 2,          4,          INT32_MAX, //
                  0x01000000, 3,          11, 12,         13,         0x01a10000, 4,
                  3,          5,          9,  0, //
                  0x01b10000, 2,          7,  0,          0x01000000, 3,          21,
                  22,         23}));
}

TEST(CompilerMajor, IsInTheVersionWord)
{
    EXPECT_EQ(compiler_major(VERSION_11), 11);
    EXPECT_EQ(compiler_major('A' << 24 | '9' << 16 | '4' << 8 | '*'), 9);
    EXPECT_EQ(compiler_major('C' << 24 | '0' << 16 | '1' << 8 | ' '), 20);
}

TEST(GcovMajor, IsReadWhoeverPackedIt)
{
    const std::pair<const char*, int> cases[] = {
        {"gcov (Debian 12.2.0-14+deb12u1) 12.2.0\nCopyright 2022\n", 12},
        {"aarch64-linux-gnu-gcov-14 (Debian 14.2.0-19) 14.2.0\n", 14},
        {"gcov (GCC) 13.2.1 20240316 (Red Hat 13.2.1-7)\n", 13},
        {"Debian LLVM version 14.0.6\n", 0},
        {"gcc (GCC) 12.2.0\n", 0},
        {"gcov (GCC", 0},
        {"", 0},
    };
    for (const auto& [text, major] : cases) {
        EXPECT_EQ(gcov_major(text), major) << text;
    }
}

TEST_F(GcovTest, TheProgramIsOfTheCompilersVersion)
{
    add_program("gcov", "echo 'gcov (GCC) 12.1.0'");
    add_program("gcov-11", "echo 'gcov (GCC) 11.4.0'");
    add_program("gcov-14", "echo 'gcov (GCC) 13.0.0'");
    add_program("cross-gcov", "echo 'cross-gcov (GCC) 11.2.0'");
    ::setenv("PATH", (dir + "/bin:/usr/bin:/bin").c_str(), 1);
    const std::string cross = dir + "/bin/cross-gcov";
    const struct {
        std::string recorded;
        std::uint32_t version;
        std::string program;
    } cases[] = {
        {cross, VERSION_11, cross},
        {cross, 'B' << 24 | '2' << 16, "gcov"},
        {"/nowhere/gcov", VERSION_11, "gcov-11"},
        {"", VERSION_11, "gcov-11"},
        {"", 'B' << 24 | '9' << 16, ""},
        {"", 'B' << 24 | '4' << 16, ""}, // the name alone does not count
    };
    GcovChoice choice;
    for (const auto& row : cases) {
        const std::string& program = choice.program_for(row.recorded, row.version);
        const bool is_systems = row.program == "gcov" && program == "gcov-12";
        EXPECT_TRUE(is_systems || program == row.program) << program << " for " << row.recorded;
    }
    Record record;
    record.version = 'B' << 24 | '9' << 16;
    ObjectReading reading = {&record, {}, {}};
    read_gcc_objects({&reading}, Counting::branches, findings_);
    EXPECT_TRUE(reading.coverage.empty());
    ASSERT_EQ(findings_.of("gcov").size(), 1U);
    EXPECT_NE(findings_.of("gcov").begin()->find("apt-get install gcc-19"), std::string::npos);
}

TEST_F(GcovTest, SourcesAreFoundUnderWhatTheCompilerWasToldToRecord)
{
    std::filesystem::create_directories(dir + "/src/sub");
    std::filesystem::create_directory_symlink(dir + "/src", dir + "/link");
    write_file(dir + "/src/a.c", "");
    write_file(dir + "/src/sub/b.h", "");
    Record plain;
    Record mapped;
    mapped.path_maps = {{dir + "/src", "/recorded"}, {dir + "/nowhere", "/recorded"}};
    Record relative;
    relative.path_maps = {{dir + "/src", "."}};
    const struct {
        const Record& record;
        std::string directory, name, path;
    } cases[] = {
        {plain, dir + "/src", "a.c", dir + "/src/a.c"},
        {plain, dir + "/src/sub", ".././sub/b.h", dir + "/src/sub/b.h"},
        {plain, "/elsewhere", dir + "/link/a.c", dir + "/src/a.c"},
        {plain, "/gone", "x/../y.c", "/gone/y.c"},
        {mapped, "/recorded/sub", "../a.c", dir + "/src/a.c"},
        {mapped, "/gone", "/recorded/sub/b.h", dir + "/src/sub/b.h"},
        {mapped, "/gone", "/recorded/none.h", "/recorded/none.h"},
        {relative, "/gone", "./sub/b.h", dir + "/src/sub/b.h"},
    };
    for (const auto& row : cases) {
        EXPECT_EQ(source_path(row.record, row.directory, row.name), row.path);
    }
}

TEST(GcovJson, SumsTheEntriesOfALineAndKeepsFunctionsApart)
{
    const GcovResult result = read_gcov_json(R"({"data_file": "7.gcda",
        "current_working_directory": "/p", "files": [{"file": "a.h", "functions": [
        {"name": "_Zf", "start_line": 3, "execution_count": 5, "demangled_name": "f"}],
        "lines": [
        {"line_number": 3, "count": 4, "function_name": "_Zf", "branches": [
            {"count": 1, "throw": false, "fallthrough": true},
            {"count": 3, "throw": true, "fallthrough": false}]},
        {"line_number": 3, "count": 10, "function_name": "_Zg", "branches": [
            {"count": 10, "throw": false, "fallthrough": true}], "conditions": [
            {"count": 4, "covered": 2, "not_covered_true": [0], "not_covered_false": [1]},
            {"count": 2, "covered": 0, "not_covered_true": [0], "not_covered_false": [0]}]},
        {"line_number": 9, "count": -1, "branches": []}]}]})");
    EXPECT_EQ(result.data_file, "7.gcda");
    EXPECT_EQ(result.directory, "/p");
    ASSERT_EQ(result.sources.size(), 1U);
    EXPECT_EQ(result.sources[0].first, "a.h");
    const SourceCoverage& source = result.sources[0].second;
    EXPECT_EQ(text_of(source), "3=14[1 3][10] 9=0 ");
    EXPECT_EQ(source.functions.at("_Zf").line, 3U);
    EXPECT_EQ(source.functions.at("_Zf").count, 5U);
    const LineBlock& block = source.blocks.at(3).at("_Zf");
    EXPECT_TRUE(block.branches[0].is_fallthrough);
    EXPECT_TRUE(block.branches[1].is_throw);
    const std::vector<Condition>& conditions = source.blocks.at(3).at("_Zg").conditions;
    ASSERT_EQ(conditions.size(), 2U);
    using Terms = std::vector<std::pair<bool, bool>>;
    EXPECT_EQ(conditions[0].terms, (Terms{{false, true}, {true, false}}));
    EXPECT_EQ(conditions[1].terms, (Terms{{false, false}}));
}

TEST(GcovJson, ThatIsCutOrOfAnotherShapeIsRefused)
{
    for (const char* text :
         {"", "{", "[]", "{\"files\": []}", R"({"data_file": 3})",
          R"({"data_file": "0.gcda", "files": [{"file": "a", "lines": [{}]}]})"}) {
        EXPECT_THROW(read_gcov_json(text), std::runtime_error) << text;
    }
}

TEST_F(GcovTest, ASignalEndsTheReadingAndLeavesNoDirectory)
{
    add_program("gcov", R"sh([ "$1" != --version ] || { echo 'gcov (test) 12.2.0'; exit; }
kill -TERM $PPID; for i in $(seq 1000000); do echo more >>more; done)sh");
    ::setenv("TMPDIR", (dir + "/tmp").c_str(), 1);
    ::mkdir("tmp", 0777);
    Record record;
    record.reader = dir + "/bin/gcov";
    record.version = VERSION_12;
    ObjectReading reading;
    reading.record = &record;
    EXPECT_EXIT(read_gcc_objects({&reading}, Counting::branches, findings_),
                testing::KilledBySignal(SIGTERM), "");
    EXPECT_EQ(names_in("tmp"), std::vector<std::string>());
}

TEST_F(GcovTest, AnObjectThatCannotBeReadDoesNotTakeOthersAlong)
{
    // Shows the notes as count, stops at those that it cannot read, and shows an object although it
    // complains of it.
    add_program("gcov", R"sh([ "$1" != --version ] || { echo 'gcov (test) 12.2.0'; exit; }
for file; do
    notes=$(cat "${file%.gcda}.gcno" 2>/dev/null) || continue
    [ "$notes" != bad ] || exit 3
    [ "$notes" != 07 ] || echo "$file:stamp mismatch with notes file" >&2
    echo '{"data_file": "'$file'", "current_working_directory": "/p", "files": [
        {"file": "a.c", "lines": [{"line_number": 1, "count": '${notes#0}'}]}]}' | paste -sd ' '
done)sh");
    constexpr std::size_t NUMBER = 100; // so many that one gcov gets several
    std::vector<Record> records(NUMBER);
    std::vector<ObjectReading> readings(NUMBER);
    ObjectReadings all;
    for (std::size_t i = 0; i < NUMBER; ++i) {
        records[i].reader = dir + "/bin/gcov";
        records[i].version = VERSION_12;
        const std::string count = std::to_string(NUMBER - i); // shorter and shorter
        records[i].notes = i % 4 == 0 ? "07" : i % 4 == 2 ? "bad" : count;
        readings[i].record = &records[i];
        all.push_back(&readings[i]);
    }
    read_gcc_objects(all, Counting::branches, findings_);
    for (std::size_t i = 0; i < NUMBER; ++i) {
        const std::string expected = i % 2 == 1 ? "1=" + std::to_string(NUMBER - i) + " " : "";
        EXPECT_EQ(text_of(readings[i].coverage["/p/a.c"]), expected) << i;
    }
    EXPECT_FALSE(findings_.of("unread objects").empty());
}
