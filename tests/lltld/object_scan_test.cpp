// Coverage symbols found in objects.
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
        {"#a\t;/*'\n|#a#b|", "a\t;/*'\n|ag_QMRCovData_b|", {"#a\t;/*'\n", "#a#b"}},
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
    answer("mkfifo fifo"); // cannot be read, which leaves the answer as it was
    int found = -1;
    EXPECT_EQ(FindSymbolInObjFileEx(&found, "fifo", "x") + found, -1);
}
