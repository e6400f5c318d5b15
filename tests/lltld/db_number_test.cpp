// Source-file tables, the rules of the stub modes, and both passes over the merged table.
#include "tests/lltld/work_area.h"

TEST_F(WorkArea, ATableGrowsOnlyAndAnEmptyFileLeavesIt)
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
        const std::tuple<std::string, int, int> rows[] = {{"", 0, 0},
                                                          {two.substr(0, 99), 99, 0},
                                                          {two.substr(280), 280, 1},
                                                          {"", 280, 1},
                                                          {two, 560, 2},
                                                          {two.substr(280), 560, 1},
                                                          {"", 560, 1},
                                                          {two + "x", 561, 2}};
        for (const auto& [content, size, count] : rows) {
            write_file("w/db/.tab", content);
            EXPECT_EQ(printed(1, read), content.empty() ? log : "");
            EXPECT_EQ(std::pair(table.listsize, table.elementcount), std::pair(size, count));
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
    const std::string x = " g_QMRCovData_x[", z = "33] = {0};\n",
                      lines[][2] = {
                          {"char" + x + z, "char" + x + z},
                          {"extern char" + x + "];\n", "extern char" + x + "];\n"},
                          {"unsigned int" + x + z, "unsigned long" + x + "33l] = {0};\n"},
                          {"extern unsigned int" + x + "];\n", "extern unsigned long" + x + "];\n"},
                          {"", ""}};
    const std::tuple<int, int, int, long, int, int, int> rows[] = {
        // points, length, start, size
        {0, 33, 2, 64, 8, 0, 2},    {1, 33, 33, 33, 132, 1, 2},   {2, 33, 33, 33, 33, 2, 0},
        {3, 33, 33, 33, 132, 3, 4}, {4, 33, 2, 33, 132, 4, 2},    {5, 33, 33, 33, 132, 5, 3},
        {6, 33, 33, 33, 132, 6, 0}, {7, 33, 2, 64, 132, 0, 3},    {8, 33, 33, 33, 132, 1, 3},
        {9, 33, 33, 33, 132, 2, 1}, {10, 33, 33, 33, 132, 10, 4}, {-1, 33, 33, 33, 132, -1, 4},
        {0, 0, 1, 0, 0, 0, 2},      {0, 1, 1, 32, 4, 0, 2},       {0, 32, 1, 32, 4, 0, 2},
        {0, 65, 3, 96, 12, 0, 2},   {0, -32, -1, 0, 0, 0, 2},     {1, -5, -5, -5, -20, 1, 2},
        {2, 0, 1, 0, 0, 2, 0},      {4, 32, 1, 32, 128, 4, 2},    {7, 1, 1, 32, 4, 0, 3}};
    for (const auto& [number, points, length, advance, bytes, recorded, line] : rows) {
        const CounterMode mode = counter_mode(number);
        EXPECT_EQ(std::tuple(array_length(mode, points), start_advance(mode, points)),
                  std::tuple(length, static_cast<std::uint64_t>(advance)))
            << number;
        EXPECT_EQ(registered_size(mode, points), bytes) << number;
        EXPECT_EQ(mode.recorded_mode, recorded) << number;
        EXPECT_EQ(array_line(mode, "x", 33, false), lines[line][0]) << number;
        EXPECT_EQ(array_line(mode, "x", 33, true), lines[line][1]) << number;
    }
}

TEST_F(WorkArea, TidyingNumbersTheListedSymbolsAndCopiesTheirFiles)
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
    EXPECT_EQ(
        answer("cd w; find db | LC_ALL=C sort | xargs echo; ls ini obj/before | xargs echo"),
        "db db/.tab db/db-1 db/db0 db/db0/.tab db/db0/dbno2 db/db0/mark db/db1 db/db1/.tab "
        "db/db2 db/db2/.tab\nini: A.ini B.ini E.ini no1.ini no2.ini obj/before: A B E no1 no2\n");
    const std::string made[] = {"", "./db/db-1\n", "./db/db-1\n./ini/no1.ini\n"};
    for (const std::string missing : {"obj/before/no1", "ini/no1.ini", "db/dbno1"}) { // one by one
        answer("rm -r w/*/*; mkdir w/obj/before; rm -r T/codemeasure/" + missing);
        EXPECT_EQ(printed(0, TidyCoverageDB), "[lltld:TidyCoverageDB]symbol=no1\n");
        EXPECT_EQ(answer("cd w; find . -name '*no1' -o -name no1.ini -o -name db-1 -o -name .tab"),
                  made[missing[0] == 'o' ? 2 : missing[0] == 'i']);
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

TEST_F(WorkArea, TheSecondPassCountsStartsArraysAndTotals)
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
    const std::tuple<int, const char*, int, int, int, std::string> rows[] = {
        {0, "", 32, 64, 128, i + "A[1" + z + i + n + "[1" + z + i + "C[2" + z + i + "E[1" + z},
        {1, "", 1, 33, 66, i + "A[1" + z + i + n + "[32" + z + i + "C[33" + z + i + "E[1" + z},
        {4, "t", 1, 33, 66, l + "A[1l" + z + l + n + "[1l" + z + l + "C[2l" + z + l + "E[1l" + z},
        {3, "", 1, 33, 66, ""}};
    for (const auto& [mode, type, b, c, total, lines] : rows) {
        g_lxprj->stubmode = mode;
        copy_bounded(g_lxprj->szCov_type, type);
        write_file("w/db/.tab", tab_record(4, "A.c", 9, 9) + tab_record(1, n + "n.c") +
                                    tab_record(2, dotted) + tab_record(3, "E"));
        _SOURCEFILE_TAB table;
        EXPECT_EQ(CodeMeasure_Client_GetSourceFileTab(&table), 1);
        std::FILE *stub = std::fopen("stub", "wb"), *tab = std::fopen("w/db/.tab", "wb");
        EXPECT_EQ(LD_UpDateCovDbTab(table, stub, tab), 1);
        std::fclose(stub);
        std::fclose(tab);
        release_table(table);
        EXPECT_EQ(read_file("stub"), lines);
        EXPECT_EQ(read_file("w/db/.tab"), tab_record(4, "A.c", 0, 1) +
                                              tab_record(1, n + "n.c", b, 32) +
                                              tab_record(2, dotted, c, 33));
        EXPECT_TRUE(std::regex_match(
            read_file("w/.prj"), // keys last written first
            std::regex("\\[project\\]\nBUID=[0-9A-Z]\\d{10}\nsutpath=/a/libm.a\n"
                       "SupportSameName =1\nEndTime_Caddis=20\\d{12}\ncoverage_counter_mode=" +
                       std::to_string(mode) + "\nstart_instpoint=" + std::to_string(total) +
                       "\n")));
    }
}
