// Coverage symbols found in objects, and the compile settings that their records hold.
#include "tests/lltld/work_area.h"

TEST_F(WorkArea, TheSearchGoesOnBehindAMismatchAndStartsBelowTheLength)
{
    const std::tuple<std::string, std::string, unsigned long, long> rows[] = {
        {"xab", "ab", 3, 1},   {"aab", "ab", 3, -1},   {"aaab", "aab", 4, -1},
        {"xab", "ab", 1, -1},  {"xab", "ab", 2, 1},    {"aaabaab", "aab", 7, 4},
        {"x", "", 0, -1},      {"x", "", 1, 0},        {"xxabxabc", "abc", 3, -1},
        {"|||#x", "#", 17, 3}, {"gg#x", "#", 16, 2},   {"g#x", "#", 15, -1},
        {"ab", "ab", 1, 0},    {"ZZJ_", "ZJ_", 4, -1}, {"g_#x", "#", 16, -1}};
    for (const auto& [text, pattern, length, offset] : rows) {
        const std::string data = object_bytes(text);
        const char* match = QMRstrstr(data.c_str(), object_bytes(pattern).c_str(), length);
        EXPECT_EQ(match == nullptr ? -1 : match - data.c_str(), offset) << text << length;
    }
}

TEST_F(WorkArea, EachNameOfAnObjectIsRegisteredOnceUpToBlankOrNul)
{
    const std::string n(259, 'n');
    const std::tuple<std::string, std::string, std::vector<std::string>> rows[] = {
        {"|ELF|#foo|#bar tail|#foo|", "foo|bar|", {"#foo", "#bar tail", "#foo"}},
        {"#foo|#Foo|#|x#", "Foo||", {"#foo", "#Foo", "#", "#"}},
        {"#a\tb;c/*'\n|#a#b|", "a\tb;c/*'\n|ag_QMRCovData_b|", {"#a\tb;c/*'\n", "#a#b"}},
        {"g#no|g_#no|ZJ_Start_", "", {}},
        {"#" + n + "nn|#" + n + "m|", n + "|", {"#" + n + "nn", "#" + n + "m"}},
        {"#s t|#end", "s|end|", {"#s t", "#end"}}};
    std::string names;
    for (const auto& [object, added, texts] : rows) {
        write_file("a.o", object_bytes(object));
        std::string lines, listed;
        for (const std::string& text : texts) {
            lines += "symbol  " + object_bytes(text) + "  in obj-file: a.o\n";
        }
        EXPECT_EQ(printed(1, [] { return FindSymbolInObjFile("a.o"); }), lines);
        ScannedObject scanned;
        EXPECT_TRUE(scan_object("a.o", scanned) && scanned.has_test_loader == texts.empty());
        EXPECT_EQ(printed(1, [&] { return register_symbols(scanned); }), lines);
        for (const _InstFile* node = instFileList.pHead; node != nullptr; node = node->pNext) {
            listed += std::string(node->szInstFileName) + "|";
        }
        EXPECT_EQ(listed, names += added) << object;
    }
    int found = -1;
    answer("mkfifo fifo; : >empty"); // cannot be read, which leaves the answer as it was
    for (const char* path : {"empty", "fifo", "."}) {
        EXPECT_EQ(printed(0, [&] { return FindSymbolInObjFileEx(&found, path, "x"); }), "");
    }
    EXPECT_EQ(found, -1);
}

TEST_F(WorkArea, TheFirstRecordedCompileCommandIsTheModules)
{
    const std::string too_long(230, 'n'), hostile = "$(touch${IFS}pwned);touch\tpwned;",
                                          none = "symbol  g_QMRCovData_none  in obj-file: a.o\n";
    EXPECT_EQ(printed(0, [] { return GetInstInfo(""); }),
              "\033[0;32;34mTUSK_INFO:GetInstInfo:: no-coverage-info\n\033[m");
    write_file("a.o", object_bytes("#none|"));
    EXPECT_EQ(printed(0, [] { return GetInstInfo("a.o\0no.o\0"); }),
              none + "File Path 'no.o' doesn't exist!\nerrors happened in FindSymbolInObjFile\n");
    write_file("fatal", printed(0, [] { return GetInstInfo("a.o\0"); }).substr(none.size()));
    EXPECT_EQ(answer("md5sum <fatal"), "fe98416d236304d71611d4ce132b4a2f  -\n");
    leave_record(too_long, 1, "wrong");
    leave_record(hostile, 1, "cc \"-D X\"" + object_bytes("|rest"));
    leave_record("two", 1, "wrong");
    write_file("a.o", object_bytes("#" + too_long + "|#" + hostile + "|#two|"));
    write_file("w/CompileOption.ini", "[CompileOption]\nC_Macro=-DA\nIncludePath=-I /i\n");
    const std::string out = printed(1, [] { return GetInstInfo("a.o\0"); }), cp = "_for_lltld: cp ";
    EXPECT_EQ(out.substr(out.find(cp)),
              cp + "'T/codemeasure/db/db" + hostile + "/CompileCmd.txt' w\n\n");
    EXPECT_EQ(g_lxprj->strCompileCmd, "cc \"-D X\"");
    const std::string include = " -I " + g_lxprj->strToolPath + "/include";
    EXPECT_EQ(g_lxprj->m_str_include, include + include + "/cunit -DA  -I /i");
    EXPECT_FALSE(QMRFileExists("pwned"));
}
