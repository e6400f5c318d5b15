// Modules and dumps as they are found on disk: which counts reach the report, and what is said
// about the others.
#include "tests/lltcov/project_fixture.h"

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

TEST_F(ProjectDataTest, TheCountersAtTheEndJoinByOrAndTheOthersByAdding)
{
    const std::string area = dir + "/liba/codemeasure";
    write_file(area + "/db/db0/record", record("S", "a.o", 8));
    for (const std::string test : {"", "\ntest one"}) { // without a name, then of a test as well
        add_dump(area + test, "Q1", source_lines("S", {3, 6}));
        add_dump(area + test, "Q1", source_lines("S", {5, 3}));
        EXPECT_EQ(counts(), test.empty() ? "8 7 " : "16 7 ");
    }
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
    EXPECT_NE(said("runs").find(", but runs of other projects have; run the tests"),
              std::string::npos);
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
