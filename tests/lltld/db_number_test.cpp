// Source-file tables, the rules of the stub modes, and both passes over the merged table.
#include "tests/lltld/work_area.h"

using SourceTable = WorkArea;
using DatabaseTidying = WorkArea;
using DatabaseNumbering = WorkArea;

TEST_F(SourceTable, GrowsOnlyAndAnEmptyFileLeavesIt)
{
    const std::string two = tab_record(1, "a.c", 2, 3, 4) + tab_record(-1, "b.c");
    for (const bool merged : {false, true}) {
        _SOURCEFILE_TAB table;
        const auto read = [&] {
            return merged ? CodeMeasure_Client_GetSourceFileTab(&table)
                          : GetOneSourceFileTabInfo2("w/db/.tab", &table);
        };
        const std::string code = merged ? "B" : "A",
                          log = "[TUSK-0x0B07300" + code +
                                "]: The content of 'w/db/.tab' is empty!\n";
        const struct {
            const char* what;
            std::string content;
            int size, records; ///< of the table in memory then
        } rows[] = {
            {"empty from the start", "", 0, 0},
            {"less than a record", two.substr(0, 99), 99, 0},
            {"one record", two.substr(280), 280, 1},
            {"empty", "", 280, 1},
            {"two records", two, 560, 2},
            {"one again", two.substr(280), 560, 1},
            {"empty again", "", 560, 1},
            {"two and a byte", two + "x", 561, 2},
        };
        for (const auto& row : rows) {
            SCOPED_TRACE(row.what);
            write_file("w/db/.tab", row.content);
            EXPECT_EQ(printed(1, read), row.content.empty() ? log : "");
            EXPECT_EQ(table.listsize, row.size);
            EXPECT_EQ(table.elementcount, row.records);
        }
        EXPECT_EQ(std::string(reinterpret_cast<char*>(table.objlist), 560), two);
        answer("truncate -s 2G w/db/.tab");
        EXPECT_EQ(printed(0, read), "Error:Read insted info from 'w/db/.tab' failed!\n");
        answer("rm w/db/.tab");
        EXPECT_EQ(printed(0, read), "File \"w/db/.tab\" open failed!\n");
        release_table(table);
    }
}

TEST(CounterModes, EachModeHasItsOwnRules)
{
    enum Line { CHARS, EXTERN_CHARS, WORDS, EXTERN_WORDS, NONE };
    const std::string x = " g_QMRCovData_x[", bound = "33] = {0};\n";
    const struct {
        std::string plain, custom; ///< without and with a custom element type
    } lines[] = {{"char" + x + bound, "char" + x + bound},
                 {"extern char" + x + "];\n", "extern char" + x + "];\n"},
                 {"unsigned int" + x + bound, "unsigned long" + x + "33l] = {0};\n"},
                 {"extern unsigned int" + x + "];\n", "extern unsigned long" + x + "];\n"},
                 {"", ""}};
    const struct {
        const char* what;
        int mode, points;
        int length;           ///< elements of the array
        std::int64_t advance; ///< of the start index
        int bytes;            ///< that are registered
        int recorded;         ///< mode in the project file
        Line line;
    } rows[] = {
        {"bits", 0, 33, 2, 64, 8, 0, WORDS},
        {"words", 1, 33, 33, 33, 132, 1, WORDS},
        {"bytes", 2, 33, 33, 33, 33, 2, CHARS},
        {"no array", 3, 33, 33, 33, 132, 3, NONE},
        {"packed, neither rounded nor registered so", 4, 33, 2, 33, 132, 4, WORDS},
        {"words defined elsewhere", 5, 33, 33, 33, 132, 5, EXTERN_WORDS},
        {"bytes registered as words", 6, 33, 33, 33, 132, 6, CHARS},
        {"7 is 0 defined elsewhere", 7, 33, 2, 64, 132, 0, EXTERN_WORDS},
        {"8 is 1 defined elsewhere", 8, 33, 33, 33, 132, 1, EXTERN_WORDS},
        {"9 is 2 defined elsewhere", 9, 33, 33, 33, 132, 2, EXTERN_CHARS},
        {"beyond the modes", 10, 33, 33, 33, 132, 10, NONE},
        {"below the modes", -1, 33, 33, 33, 132, -1, NONE},
        {"bits without points", 0, 0, 1, 0, 0, 0, WORDS},
        {"one full word", 0, 32, 1, 32, 4, 0, WORDS},
        {"third word", 0, 65, 3, 96, 12, 0, WORDS},
        {"negative bits", 0, -32, -1, 0, 0, 0, WORDS},
        {"negative words", 1, -5, -5, -5, -20, 1, WORDS},
        {"bytes without points", 2, 0, 1, 0, 0, 2, CHARS},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        const CounterMode mode = counter_mode(row.mode);
        EXPECT_EQ(array_length(mode, row.points), row.length);
        EXPECT_EQ(start_advance(mode, row.points), static_cast<std::uint64_t>(row.advance));
        EXPECT_EQ(registered_size(mode, row.points), row.bytes);
        EXPECT_EQ(mode.recorded_mode, row.recorded);
        EXPECT_EQ(array_line(mode, "x", 33, false), lines[row.line].plain);
        EXPECT_EQ(array_line(mode, "x", 33, true), lines[row.line].custom);
    }
}

TEST_F(DatabaseTidying, NumbersTheListedSymbolsAndCopiesTheirFiles)
{
    std::string lines = "[TUSK-0x0B07300A]: The content of 'T/codemeasure/db/dbE/.tab' is empty!\n";
    for (const std::string symbol : {"no1", "A", "no2", "E", "B"}) {
        leave_record(symbol, 9);
        WriteDBNameToList(symbol.c_str());
        const std::string line = "[lltld:TidyCoverageDB]symbol=" + symbol + "\n";
        lines = symbol == "B" ? lines + line : lines.insert(lines.rfind("[TUSK"), line);
    }
    answer("cd T/codemeasure/db; rm dbno1/.tab dbno2/.tab */*.txt; : >dbE/.tab; echo A >dbA/mark");
    write_file("T/codemeasure/db/dbB/.tab", tab_record(0, std::string(256, 'x')));
    EXPECT_EQ(printed(1, TidyCoverageDB), lines);
    EXPECT_EQ(read_file("w/db/.tab"),
              tab_record(0, "A.c") + tab_record(1, "A.c") + tab_record(2, std::string(255, 'x')));
    EXPECT_EQ(answer("ls w/obj/before"), ""); // they have time until the stub is compiled
    copy_saved_objects();
    EXPECT_EQ(
        answer("cd w; find db | LC_ALL=C sort | xargs echo; ls ini obj/before | xargs echo"),
        "db db/.tab db/db-1 db/db0 db/db0/.tab db/db0/dbno2 db/db0/mark db/db1 db/db1/.tab "
        "db/db2 db/db2/.tab\nini: A.ini B.ini E.ini no1.ini no2.ini obj/before: A B E no1 no2\n");
    answer("rm -r w/*/*; mkdir w/obj/before; rm T/codemeasure/obj/before/E");
    printed(0, TidyCoverageDB);
    EXPECT_EQ(answer("ls w/obj/before | xargs echo"), "A no1 no2\n"); // those before the failure
    const struct {
        const char *what, *missing, *made;
    } rows[] = {{"the saved object is copied last", "obj/before/no1", "./db/db-1\n./ini/no1.ini\n"},
                {"the symbol's own file after its database", "ini/no1.ini", "./db/db-1\n"},
                {"the database first", "db/dbno1", ""}};
    for (const auto& row : rows) { // what is missing stays so
        SCOPED_TRACE(row.what);
        answer(std::string("rm -r w/*/*; mkdir w/obj/before; rm -r T/codemeasure/") + row.missing);
        EXPECT_EQ(printed(0, TidyCoverageDB), "[lltld:TidyCoverageDB]symbol=no1\n");
        EXPECT_EQ(answer("cd w; find . -name '*no1' -o -name no1.ini -o -name db-1 -o -name .tab"),
                  row.made);
    }
    g_iSupportSameName = 2; // lists only, so that nothing is missing
    EXPECT_EQ(printed(1, TidyCoverageDB), lines);
    EXPECT_EQ(answer("ls -A w/* | xargs echo"), "w/db: .tab w/ini: w/obj: before\n");
    answer("cd T/codemeasure/db; rm dbE/.tab; mkdir dbE/.tab"); // cannot be read
    const std::string out = printed(0, TidyCoverageDB);
    EXPECT_EQ(out.substr(out.find("[TUSK")),
              "[TUSK-0x0B074907]: this error arises when TidyCoverageDB!\n");
    EXPECT_FALSE(QMRFileExists("w/db/.tab"));
}

TEST_F(DatabaseNumbering, CountsStartsArraysAndTotals)
{
    const std::string n(31, 'n'),
        dotted = "C.bar" + std::string(30, 'x'), // cut to 31, then at dots
        i = "unsigned int g_QMRCovData_", l = "unsigned long g_QMRCovData_", z = "] = {0};\n";
    leave_record("A", 1);
    leave_record(n, 32);
    leave_record("C", 33);
    leave_record("E");
    write_file("T/codemeasure/db/dbE/.tab", ""); // left out of the table, not of the stub
    copy_bounded(g_lxprj->szObjFile, "/a/libm.a");
    const struct {
        const char* what;
        int mode;
        const char* type;         ///< custom element type
        int second, third, total; ///< start indexes after 1, 32 and 33 points
        std::string lines;
    } rows[] = {
        {"bits round to words", 0, "", 32, 64, 128,
         i + "A[1" + z + i + n + "[1" + z + i + "C[2" + z + i + "E[1" + z},
        {"words", 1, "", 1, 33, 66,
         i + "A[1" + z + i + n + "[32" + z + i + "C[33" + z + i + "E[1" + z},
        {"packed words of a custom type", 4, "t", 1, 33, 66,
         l + "A[1l" + z + l + n + "[1l" + z + l + "C[2l" + z + l + "E[1l" + z},
        {"no arrays", 3, "", 1, 33, 66, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        g_lxprj->stubmode = row.mode;
        copy_bounded(g_lxprj->szCov_type, row.type);
        write_file("w/db/.tab", tab_record(4, "A.c", 9, 9) + tab_record(1, n + "n.c") +
                                    tab_record(2, dotted) + tab_record(3, "E"));
        _SOURCEFILE_TAB table;
        EXPECT_EQ(CodeMeasure_Client_GetSourceFileTab(&table), 1);
        std::FILE *stub = std::fopen("stub", "wb"), *tab = std::fopen("w/db/.tab", "wb");
        EXPECT_EQ(LD_UpDateCovDbTab(table, stub, tab), 1);
        std::fclose(stub);
        std::fclose(tab);
        release_table(table);
        EXPECT_EQ(read_file("stub"), row.lines);
        EXPECT_EQ(read_file("w/db/.tab"), tab_record(4, "A.c", 0, 1) +
                                              tab_record(1, n + "n.c", row.second, 32) +
                                              tab_record(2, dotted, row.third, 33));
        EXPECT_TRUE(std::regex_match(
            read_file("w/.prj"), // keys last written first
            std::regex("\\[project\\]\nBUID=[0-9A-Z]\\d{10}\nsutpath=/a/libm.a\n"
                       "SupportSameName =1\nEndTime_Caddis=20\\d{12}\ncoverage_counter_mode=" +
                       std::to_string(row.mode) + "\nstart_instpoint=" + std::to_string(row.total) +
                       "\n")));
    }
}
