// Modules and dumps as they are found on disk: which counts reach the report, and what is said
// about the others.
#include "lltcov/project_data.h"
#include "lltcov/shown_sources.h"
#include "lltld/source_tab.h"
#include "tests/fixture.h"

#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>

namespace
{

constexpr time_t COMPILED = 1700000000;

void set_time(const std::string& path, time_t seconds)
{
    const timespec times[2] = {{seconds, 0}, {seconds, 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
}

std::string table(int number, const std::string& symbol, unsigned size)
{
    _SOURCEFILE_OBJECT entry = {};
    entry.fileid = number;
    (symbol + ".c").copy(entry.szName, sizeof entry.szName - 1);
    entry.size = size;
    entry.mtime = size != 0 ? COMPILED : 0;
    entry.instnum = 4;
    return std::string(reinterpret_cast<const char*>(&entry), sizeof entry);
}

std::string word(std::uint64_t value)
{
    return std::string(reinterpret_cast<const char*>(&value), sizeof value);
}

/// The lines of a dump that tell of its sources, and the counts of one run.
std::string source_lines(const std::string& symbol, const Counters& counters)
{
    const std::string bytes = std::to_string(counters.size() * 8);
    std::string text = "file 0 " + symbol + ".c " + bytes + "\ncounts " +
                       std::to_string(counters.size() * 8 + 8) + "\n" + word(1);
    for (const std::uint64_t count : counters) {
        text += word(count);
    }
    return text;
}

/// A gcov for objects of one function with two counters: the first one is line 1 of a.c, the second
/// one line 7 of h.h.
constexpr char GCOV[] = R"sh(#!/bin/sh
[ "$1" != --version ] || { echo 'gcov (test) 12.2.0'; exit; }
for file; do
    [ -f "$file" ] || continue
    set -- $(od -An -tu8 -j60 -N16 "$file")
    echo '{"data_file": "'$file'", "current_working_directory": "@", "files": [
        {"file": "a.c", "lines": [{"line_number": 1, "count": '$1'}]},
        {"file": "h.h", "lines": [{"line_number": 7, "count": '$2'}]}]}' | paste -sd ' '
done
)sh";

class ProjectDataTest : public TestDir
{
protected:
    void SetUp() override
    {
        TestDir::SetUp();
        write_file(dir + "/a.c", "12345");
        write_file(dir + "/h.h", "h");
        set_time(dir + "/a.c", COMPILED);
        set_time(dir + "/h.h", COMPILED);
        std::string gcov = GCOV;
        write_file(dir + "/gcov", gcov.replace(gcov.find('@'), 1, dir));
        std::filesystem::permissions(dir + "/gcov", std::filesystem::perms::owner_all);
        add_module("liba", "S");
    }

    /// The record of an object of a.c, which includes h.h.
    std::string record(const std::string& symbol, const std::string& object = "a.o")
    {
        Record record;
        record.symbol = symbol;
        record.source = dir + "/a.c";
        record.object = dir + "/" + object;
        record.reader = dir + "/gcov";
        record.array_bytes = 16;
        record.version = 'B' << 24 | '2' << 16 | '2' << 8 | '*';
        record.has_checksum = true;
        record.functions = {{"f", 1, 2, 3, 0, {{0, 2, 0}}}};
        record.notes = "notes";
        return to_bytes(record);
    }

    /// A module with one object of a.c.
    void add_module(const std::string& name, const std::string& symbol)
    {
        const std::string area = dir + "/" + name + "/codemeasure";
        std::filesystem::create_directories(area + "/db/db0");
        write_file(dir + "/" + name + ".a", "");
        write_file(area + "/.prj", "[project]\nBUID=Q1\nsutpath=" + dir + "/" + name + ".a\n");
        write_file(area + "/db/.tab", table(0, symbol, 0));
        write_file(area + "/db/db0/.tab", table(0, symbol, 5));
        write_file(area + "/db/db0/record", record(symbol));
        write_file(dir + "/a.o", "");
        set_time(dir + "/a.o", COMPILED + 1);
    }

    void add_dump(const std::string& area, const std::string& buid, const std::string& files)
    {
        std::filesystem::create_directories(dir + "/runs");
        write_file(dir + "/runs/m." + std::to_string(dumps_++) + ".0.lltcov",
                   "lltcov 2\nmodule m\nbuid " + buid + "\narea " + area + "\norder little\n" +
                       files);
    }

    /// The counts of a.c:1 and h.h:7, "-" for a line that is not shown.
    std::string counts()
    {
        findings_ = Findings();
        ProjectData data = read_modules(dir, findings_);
        add_dumps(data, dir + "/runs", findings_);
        CoverageMaker maker(data, Counting::branches, findings_);
        return counts_in(maker.coverage_of(all_objects(data)));
    }

    std::string counts_in(Coverage coverage)
    {
        std::string text;
        for (const auto& [path, line] : {std::pair{dir + "/a.c", 1U}, {dir + "/h.h", 7U}}) {
            const auto& lines = coverage[path].lines;
            text += lines.count(line) != 0 ? std::to_string(lines.at(line)) + " " : "- ";
        }
        return text;
    }

    std::string said(const std::string& kind)
    {
        std::string text;
        for (const std::string& line : findings_.of(kind)) {
            text += line + "\n";
        }
        return text;
    }

    const std::string one_run_ = source_lines("S", {3, 4});
    Findings findings_;
    int dumps_ = 0;
};

} // namespace

TEST_F(ProjectDataTest, RunsOfTheLastBuildAddUpAndAnUncalledModuleCountsAsZero)
{
    EXPECT_EQ(counts(), "0 0 ");
    EXPECT_NE(said("runs").find("no run of this project"), std::string::npos);
    add_dump(dir + "/liba/codemeasure", "Q1", one_run_);
    add_dump("liba/codemeasure", "Q1", one_run_); // the build's path of the project was relative
    std::filesystem::current_path("/");
    EXPECT_EQ(counts(), "6 8 ");
    EXPECT_FALSE(findings_.has_problems());
}

TEST_F(ProjectDataTest, AnObjectOfTwoModulesIsOneAndAnotherObjectOfTheSourceIsAdded)
{
    add_module("libb", "S");
    add_module("libc", "OTHER");
    add_dump(dir + "/liba/codemeasure", "Q1", one_run_);
    add_dump(dir + "/libb/codemeasure", "Q1", one_run_);
    add_dump(dir + "/libc/codemeasure", "Q1", source_lines("OTHER", {10, 0}));
    EXPECT_EQ(counts(), "16 8 ");
}

TEST_F(ProjectDataTest, DumpsThatDoNotFitAreLeftOutWithAReason)
{
    const std::string area = dir + "/liba/codemeasure";
    const std::string twice = "file 0 S.c 16\nfile 1 S.c 16\ncounts 40\n" + word(1) + word(1) +
                              word(1) + word(1) + word(1);
    const struct {
        std::string area, buid, files;
        const char* kind;
        const char* says;
    } cases[] = {
        {area, "Q2", one_run_, "refused dumps", "/liba.a' is of build Q1"},
        {dir + "/gone/codemeasure", "Q1", one_run_, "dumps of modules that are gone", "no module"},
        {area, "Q1", source_lines("NEW", {3, 4}), "sources without records", "'NEW'"},
        {area, "Q1", source_lines("S", {3, 4, 5}), "damaged dumps", "3 counters"},
        {area, "Q1", "file 0 S.c 0\n" + source_lines("S", {}), "damaged dumps", "0 counters"},
        {area, "Q1", twice, "damaged dumps", "twice"},
        {area, "Q1", one_run_ + "x", "damaged dumps", ".lltcov:7: there are not 24"},
    };
    for (const auto& bad : cases) {
        std::filesystem::remove_all(dir + "/runs");
        add_dump(area, "Q1", one_run_);
        add_dump(bad.area, bad.buid, bad.files);
        EXPECT_EQ(counts(), "3 4 ") << bad.says;
        EXPECT_TRUE(findings_.has_problems());
        EXPECT_NE(said(bad.kind).find(bad.says), std::string::npos) << said(bad.kind);
    }
}

TEST_F(ProjectDataTest, ALibraryWhoseWorkAreaAnotherOneTookCountsWithTheBuildThatWasLinked)
{
    const std::string area = dir + "/liba/codemeasure";
    const std::string left = dir + "/LLTTEMP/codemeasure/db/dbOLD";
    std::filesystem::create_directories(dir + "/prog_exe/codemeasure");
    std::filesystem::create_directories(left);
    write_file(left + "/.tab", table(0, "OLD", 5));
    write_file(left + "/record", record("OLD", "b.o"));
    write_file(dir + "/old.a", "");
    add_dump(area, "Q0", source_lines("OLD", {20, 0}));
    add_dump(area, "Q1", one_run_);
    const std::string head = "lltlibraries 1\nlibrary ";
    const std::string symbol = "\narea " + area + "\nbuid Q0\nsymbol OLD\n";
    const struct {
        std::string list;
        const char* counts;
        const char* kind; ///< of the findings
    } cases[] = {
        {head + dir + "/old.a" + symbol, "23 4 ", nullptr},
        {head + dir + "/old.a\narea liba/codemeasure\nbuid Q0\nsymbol OLD\n", "23 4 ", nullptr},
        {head + dir + "/gone.a" + symbol, "3 4 ", "refused dumps"},
        {head + dir + "/liba.a" + symbol, "3 4 ",
         "refused dumps"}, // built again since, not linked again
        {"lltlibraries 1\nbuid Q0\n", "3 4 ", "damaged records"},
        {head + dir + "/old.a" + symbol + "symbol GONE\n", "23 4 ", "damaged records"},
    };
    for (const auto& row : cases) {
        write_file(dir + "/prog_exe/codemeasure/libraries.txt", row.list);
        EXPECT_EQ(counts(), row.counts) << row.list;
        EXPECT_EQ(findings_.has_problems(), row.kind != nullptr) << row.list;
        EXPECT_EQ(said(row.kind == nullptr ? "" : row.kind).empty(), row.kind == nullptr);
    }
    // A copy of the library that has the work area, or one that it went into, is no other library.
    Findings findings;
    write_file(dir + "/prog_exe/codemeasure/libraries.txt",
               head + dir + "/old.a\narea " + area + "\nbuid Q1\nsymbol OLD\nsymbol S\n");
    EXPECT_EQ(read_modules(dir, findings).modules.size(), 1U);
}

TEST_F(ProjectDataTest, DumpsOfOtherProjectsAndFilesThatAreBeingWrittenAreNotLookedAt)
{
    add_dump("/elsewhere/liba/codemeasure", "Q7", one_run_);
    write_file(dir + "/runs/.liba.1.tmp", "x");
    write_file(dir + "/runs/liba.0.lltcov", ""); // its program was killed
    EXPECT_EQ(counts(), "0 0 ");
    EXPECT_FALSE(findings_.has_problems());
    EXPECT_NE(said("runs").find("other projects there: 1)"), std::string::npos);
}

TEST_F(ProjectDataTest, LinesOfATextThatHasChangedAreNotShown)
{
    add_dump(dir + "/liba/codemeasure", "Q1", one_run_);
    set_time(dir + "/a.c", COMPILED + 9);
    EXPECT_EQ(counts(), "- 4 ");
    EXPECT_NE(said("changed sources").find("/a.c' has changed since"), std::string::npos);
    set_time(dir + "/a.c", COMPILED);
    set_time(dir + "/h.h", COMPILED + 9);
    EXPECT_EQ(counts(), "3 - ");
    set_time(dir + "/h.h", COMPILED);
    write_file(dir + "/a.c", "123456");
    set_time(dir + "/a.c", COMPILED);
    EXPECT_EQ(counts(), "- 4 ");
    std::filesystem::remove(dir + "/a.c");
    EXPECT_EQ(counts(), "- 4 ");
    EXPECT_NE(said("sources that are gone").find("/a.c' is gone"), std::string::npos);

    // Touched and compiled again with the same result: the driver's newer record counts.
    write_file(dir + "/a.c", "123456");
    set_time(dir + "/a.c", COMPILED);
    std::filesystem::create_directories(dir + "/LLTTEMP/codemeasure/db/dbS");
    write_file(dir + "/LLTTEMP/codemeasure/db/dbS/.tab", table(0, "S", 6));
    EXPECT_EQ(counts(), "3 4 ");
}

TEST_F(ProjectDataTest, WhatATestBuiltAndRemovedIsNoProblem)
{
    add_dump("liba/codemeasure", "Q0", one_run_);
    add_dump("liba/codemeasure", "Q1", source_lines("NEW", {3, 4}));
    std::filesystem::remove(dir + "/a.c");
    EXPECT_EQ(counts(), "- 0 ");
    EXPECT_TRUE(findings_.has_problems());
    std::filesystem::remove(dir + "/liba.a");
    EXPECT_EQ(counts(), "- 0 ");
    EXPECT_FALSE(findings_.has_problems());
    for (const char* kind : {"refused dumps", "sources without records", "modules that are gone"}) {
        EXPECT_NE(said(kind), "") << kind;
    }
}

TEST_F(ProjectDataTest, DamagedRecordsAreNamed)
{
    const std::string area = dir + "/liba/codemeasure";
    const std::pair<std::string, std::string> cases[] = {
        {"/db/db0/record", record("S").substr(0, 99)},
        {"/db/db0/record", ""},
        {"/db/db0/record", record("ANOTHER")}, // a copy of another source's record
        {"/db/.tab", table(0, "S", 0).substr(1)},
        {"/db/.tab", ""},
        {"/.prj", "[project]\n"},
    };
    for (const auto& [file, text] : cases) {
        const std::string whole = read_file(area + file);
        write_file(area + file, text);
        EXPECT_EQ(counts(), "- - ") << file;
        EXPECT_NE(said("damaged records").find("build it again"), std::string::npos) << file;
        write_file(area + file, whole);
    }
    EXPECT_EQ(counts(), "0 0 ");
}

TEST_F(ProjectDataTest, RunsOfTestsAreAlsoKeptByTest)
{
    const std::string area = dir + "/liba/codemeasure";
    add_module("libc", "OTHER");
    add_dump(area, "Q1", one_run_);
    add_dump(area, "Q1", "test one\n" + source_lines("S", {10, 0}));
    add_dump(area, "Q1", "test one\n" + source_lines("S", {20, 0}));
    add_dump(area, "Q1", "test two\n" + source_lines("S", {0, 0}));
    add_dump(dir + "/libc/codemeasure", "Q1", "test two\n" + source_lines("OTHER", {0, 500}));
    EXPECT_EQ(counts(), "33 504 ");
    ProjectData data = read_modules(dir, findings_);
    add_dumps(data, dir + "/runs", findings_);
    EXPECT_EQ(data.tests, (std::set<std::string>{"one", "two"}));
    EXPECT_EQ(all_runs(data.objects[data.object_of_symbol.at("S")]).runs, 4U);
    CoverageMaker maker(data, Counting::branches, findings_);
    const std::vector<std::size_t> all = all_objects(data);
    EXPECT_EQ(counts_in(maker.coverage_of_test("", all)), "3 4 ");
    EXPECT_EQ(counts_in(maker.coverage_of_test("one", all)), "30 0 ");
    EXPECT_EQ(counts_in(maker.coverage_of_test("two", all)), "0 500 ");
    EXPECT_EQ(maker.objects_with(dir + "/h.h", 7), all);
    EXPECT_TRUE(maker.objects_with(dir + "/h.h", 8).empty());
}

TEST(WantedCounting, IsBranchesUnlessTheEnvironmentSaysOtherwise)
{
    const std::pair<const char*, Counting> cases[] = {{"", Counting::branches},
                                                      {"branches", Counting::branches},
                                                      {"lines", Counting::lines},
                                                      {"conditions", Counting::conditions}};
    for (const auto& [value, counting] : cases) {
        ::setenv("LLTCOV_COUNT", value, 1);
        EXPECT_EQ(wanted_counting(), counting) << value;
    }
    ::setenv("LLTCOV_COUNT", "line", 1);
    EXPECT_THROW(wanted_counting(), UsageError);
    ::unsetenv("LLTCOV_COUNT");
    EXPECT_EQ(wanted_counting(), Counting::branches);
}

TEST(SystemHeader, IsWhatCompilersAndPackagesBring)
{
    for (const char* path : {"/usr/include/stdio.h", "/usr/lib/gcc/x86_64-linux-gnu/12/include/a.h",
                             "/usr/local/include/b.h", "/usr/include/c++/12/vector"}) {
        EXPECT_TRUE(is_system_header(path)) << path;
    }
    for (const char* path : {"/home/usr/include/a.h", "/usr/src/p/include/a.h", "/usr/a.c"}) {
        EXPECT_FALSE(is_system_header(path)) << path;
    }
}
