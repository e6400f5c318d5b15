// The rules of the stub modes, and both passes over the merged table.
#include "tests/lltld/work_area.h"

TEST(CounterModes, EachModeHasItsOwnRules)
{
    const std::string x = " g_QMRCovData_x[", z = "33] = {0};\n";
    const std::pair<std::string, std::string> lines[] = {
        {"char" + x + z, "char" + x + z},
        {"extern char" + x + "];\n", "extern char" + x + "];\n"},
        {"unsigned int" + x + z, "unsigned long" + x + "33l] = {0};\n"},
        {"extern unsigned int" + x + "];\n", "extern unsigned long" + x + "];\n"},
        {"", ""}};
    const std::tuple<int, int, int, unsigned long, int, int, int> rows[] = {
        {0, 33, 2, 64, 8, 0, 2},    {1, 33, 33, 33, 132, 1, 2},   {2, 33, 33, 33, 33, 2, 0},
        {3, 33, 33, 33, 132, 3, 4}, {4, 33, 2, 33, 132, 4, 2},    {5, 33, 33, 33, 132, 5, 3},
        {6, 33, 33, 33, 132, 6, 0}, {7, 33, 2, 64, 132, 0, 3},    {8, 33, 33, 33, 132, 1, 3},
        {9, 33, 33, 33, 132, 2, 1}, {10, 33, 33, 33, 132, 10, 4}, {-1, 33, 33, 33, 132, -1, 4},
        {0, 0, 1, 0, 0, 0, 2},      {0, 1, 1, 32, 4, 0, 2},       {0, 32, 1, 32, 4, 0, 2},
        {0, 65, 3, 96, 12, 0, 2},   {0, -32, -1, 0, 0, 0, 2},     {1, -5, -5, -5UL, -20, 1, 2},
        {2, 0, 1, 0, 0, 2, 0},      {4, 32, 1, 32, 128, 4, 2},    {7, 1, 1, 32, 4, 0, 3}};
    for (const auto& [number, points, length, advance, bytes, recorded, line] : rows) {
        const CounterMode mode = counter_mode(number);
        EXPECT_EQ(std::tuple(number, array_length(mode, points), start_advance(mode, points),
                             registered_size(mode, points), mode.recorded_mode),
                  std::tuple(number, length, advance, bytes, recorded));
        EXPECT_EQ(array_line(mode, "x", 33, false), lines[line].first) << number;
        EXPECT_EQ(array_line(mode, "x", 33, true), lines[line].second) << number;
    }
}

TEST_F(WorkArea, TidyingNumbersTheListedSymbolsAndCopiesTheirFiles)
{
    std::string lines;
    for (const std::string symbol : {"no1", "A", "no2", "E", "B"}) {
        leave_record(symbol, 9);
        WriteDBNameToList(symbol.c_str());
        lines += "[lltld:TidyCoverageDB]symbol=" + symbol + "\n";
    }
    lines.insert(lines.rfind('['),
                 "[TUSK-0x0B07300A]: The content of 'T/codemeasure/db/dbE/.tab' is empty!\n");
    answer("cd T/codemeasure/db; rm dbno1/.tab dbno2/.tab */*.txt; : >dbE/.tab; echo A >dbA/mark; "
           "truncate -s 7 dbB/.tab"); // just its name: counts as filled up with zeros
    EXPECT_EQ(printed(1, TidyCoverageDB), lines);
    EXPECT_EQ(read_file("w/db/.tab"),
              tab_record(0, "A.c") + tab_record(1, "A.c") + tab_record(2, "B.c"));
    EXPECT_EQ(
        answer("cd w; find db | LC_ALL=C sort | xargs; ls ini obj/before | xargs"),
        "db db/.tab db/db-1 db/db0 db/db0/.tab db/db0/dbno2 db/db0/mark db/db1 db/db1/.tab "
        "db/db2 db/db2/.tab\nini: A.ini B.ini E.ini no1.ini no2.ini obj/before: A B E no1 no2\n");
    const char* made = "w/db/db-1\nw/ini/no1.ini\n";
    for (const std::string missing : {"obj/before/no1", "ini/no1.ini", "db/dbno1"}) { // one by one
        answer("rm -r w/*/*; mkdir w/obj/before; rm -r T/codemeasure/" + missing);
        EXPECT_EQ(printed(0, TidyCoverageDB), "[lltld:TidyCoverageDB]symbol=no1\n");
        EXPECT_EQ(answer("find w -name 'no1*' -o -name db-1 -o -name .tab"), made);
        made = missing[0] == 'i' ? "" : "w/db/db-1\n";
    }
    g_iSupportSameName = 2; // lists only, so that nothing is missing
    EXPECT_EQ(printed(1, TidyCoverageDB), lines);
    EXPECT_EQ(answer("ls -A w/* | xargs"), "w/db: .tab w/ini: w/obj: before\n");
}

TEST_F(WorkArea, TheSecondPassCountsStartsArraysAndTotals)
{
    const std::string n(31, 'n'), dotted = "C.bar" + std::string(30, 'x'), z = "] = {0};\n",
                                  i = "unsigned int g_QMRCovData_",
                                  l = "unsigned long g_QMRCovData_";
    leave_record("A", 1);
    leave_record(n, 32);
    leave_record("C", 33);
    leave_record("E");
    write_file("T/codemeasure/db/dbE/.tab", ""); // left out of the table, not of the stub
    copy_bounded(g_lxprj->szObjFile, "/a/libm.a");
    const std::tuple<int, const char*, int, int, int, std::string> rows[] = {
        {0, "", 32, 64, 128, i + "A[1" + z + i + n + "[1" + z + i + "C[2" + z + i + "E[1" + z},
        {1, "", 1, 33, 66, i + "A[1" + z + i + n + "[32" + z + i + "C[33" + z + i + "E[1" + z},
        {4, "t", 1, 33, 66, l + "A[1l" + z + l + n + "[1l" + z + l + "C[2l" + z + l + "E[1l" + z}};
    for (const auto& [mode, type, b, c, total, lines] : rows) {
        g_lxprj->stubmode = mode;
        copy_bounded(g_lxprj->szCov_type, type);
        write_file("w/db/.tab", tab_record(4, "A.c", 9, 9) + tab_record(1, n + "n.c") +
                                    tab_record(2, dotted) + tab_record(3, "E"));
        printed(0, Caddis_Coverage_CreateCovInitCodeFile); // there is no compile command
        EXPECT_EQ(read_file("w/obj/__code_measure_stub_lib_m.c").substr(1061, lines.size() + 1),
                  lines + "\n");
        EXPECT_EQ(read_file("w/db/.tab"), tab_record(4, "A.c", 0, 1) +
                                              tab_record(1, n + "n.c", b, 32) +
                                              tab_record(2, dotted, c, 33));
        const std::string keys = "\\[project\\]\nBUID=[0-9A-Z]\\d{10}\nsutpath=/a/libm.a\n"
                                 "SupportSameName =1\nEndTime_Caddis=20\\d{12}\n"; // last first
        EXPECT_TRUE(std::regex_match(
            read_file("w/.prj"), std::regex(keys + "coverage_counter_mode=" + std::to_string(mode) +
                                            "\nstart_instpoint=" + std::to_string(total) + "\n")));
    }
}
