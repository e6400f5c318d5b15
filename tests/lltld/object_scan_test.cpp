// Coverage symbols found in objects, and the compile settings that their records hold.
#include "lltld/inst_file_list.h"
#include "tests/lltld/work_area.h"

using ObjectScan = WorkArea;
using ModuleCompile = WorkArea;

TEST_F(ObjectScan, SearchGoesOnAfterAMismatchAndStartsBelowTheLength)
{
    const struct {
        const char* what;
        std::string data, pattern; ///< as `object_bytes` reads them
        unsigned long length;
        long match; ///< offset of the match, -1 for none
    } rows[] = {
        {"found", "xab", "ab", 3, 1},
        {"the mismatching byte begins no match", "aab", "ab", 3, -1},
        {"an overlapping match is skipped", "aaab", "aab", 4, -1},
        {"a later match is found", "aaabaab", "aab", 7, 4},
        {"no attempt from the length on", "xab", "ab", 1, -1},
        {"a last attempt below the length", "xab", "ab", 2, 1},
        {"an attempt reads beyond the length", "ab", "ab", 1, 0},
        {"a failed attempt counts towards the length", "xxabxabc", "abc", 3, -1},
        {"an empty pattern in nothing", "x", "", 0, -1},
        {"an empty pattern in something", "x", "", 1, 0},
        {"after NULs", "|||#x", "#", 17, 3},
        {"after two mismatches", "gg#x", "#", 16, 2},
        {"the prefix's first byte before it", "g#x", "#", 15, -1},
        {"the prefix's first two bytes before it", "g_#x", "#", 16, -1},
        {"a doubled first byte", "ZZJ_", "ZJ_", 4, -1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        const std::string data = object_bytes(row.data);
        const char* match = QMRstrstr(data.c_str(), object_bytes(row.pattern).c_str(), row.length);
        EXPECT_EQ(match == nullptr ? -1 : match - data.c_str(), row.match);
    }
}

TEST_F(ObjectScan, RegistersEachNameOfAnObjectOnceUpToBlankOrNul)
{
    const std::string n(259, 'n');
    const struct {
        const char* what;
        std::string object;
        std::string added;                ///< names that are new in the list, "|" after each
        std::vector<std::string> symbols; ///< texts that are printed
    } rows[] = {
        {"a name twice", "|ELF|#foo|#bar tail|#foo|", "foo|bar|", {"#foo", "#bar tail", "#foo"}},
        {"case counts, a name may be empty", "#foo|#Foo|#|x#", "Foo||", {"#foo", "#Foo", "#", "#"}},
        {"other white space and signs belong to the name",
         "#a\tb;c/*'\n|#a#b|",
         "a\tb;c/*'\n|ag_QMRCovData_b|",
         {"#a\tb;c/*'\n", "#a#b"}},
        {"a test loader", "g#no|g_#no|ZJ_Start_", "", {}},
        {"a name is cut to 259 bytes",
         "#" + n + "nn|#" + n + "m|",
         n + "|",
         {"#" + n + "nn", "#" + n + "m"}},
        {"the text goes on after a blank", "#s t|#end", "s|end|", {"#s t", "#end"}},
    };
    std::string names;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        write_file("a.o", object_bytes(row.object));
        std::string lines, listed;
        for (const std::string& text : row.symbols) {
            lines += "symbol  " + object_bytes(text) + "  in obj-file: a.o\n";
        }
        EXPECT_EQ(printed(1, [] { return FindSymbolInObjFile("a.o"); }), lines);
        ScannedObject scanned;
        EXPECT_TRUE(scan_object("a.o", scanned));
        EXPECT_EQ(scanned.has_test_loader, row.symbols.empty());
        InstNameRecorder recorder;
        EXPECT_EQ(printed(1, [&] { return register_symbols(scanned, recorder); }), lines);
        for (const _InstFile* node = instFileList.pHead; node != nullptr; node = node->pNext) {
            listed += std::string(node->szInstFileName) + "|";
        }
        EXPECT_EQ(listed, names += row.added);
    }
}

TEST_F(ObjectScan, AFileThatCannotBeReadLeavesTheAnswerAsItWas)
{
    int found = -1;
    answer("mkfifo fifo; : >empty");
    for (const char* path : {"empty", "fifo", "."}) {
        EXPECT_EQ(printed(0, [&] { return FindSymbolInObjFileEx(&found, path, "x"); }), "");
    }
    EXPECT_EQ(found, -1);
}

TEST_F(ModuleCompile, TakesTheFirstCompileCommandThatIsRecorded)
{
    const std::string too_long(230, 'n'), hostile = "$(touch${IFS}pwned);touch\tpwned;",
                                          none = "symbol  g_QMRCovData_none  in obj-file: a.o\n";
    EXPECT_EQ(printed(0, [] { return GetInstInfo(""); }),
              "\033[0;32;34mTUSK_INFO:GetInstInfo:: no-coverage-info\n\033[m");
    write_file("a.o", object_bytes("#none|"));
    EXPECT_EQ(printed(0, [] { return GetInstInfo("a.o\0no.o\0"); }),
              none + "File Path 'no.o' doesn't exist!\nerrors happened in FindSymbolInObjFile\n");
    EXPECT_EQ(printed(0, [] { return GetInstInfo("a.o\0"); }).substr(none.size()),
              "\033[0;32;31mTUSK_FATAL:copy_compile_command_for_lltld failed\n\n\033[m" +
                  records_are_gone("must donot"));
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

TEST_F(ModuleCompile, TakesTheCommandOfAnEarlierRunAndTellsOnceOfMissingRecords)
{
    const std::string missing = "lltwrapper: 'T/codemeasure/db/dbnone/CompileCmd.txt' is missing; "
                                "compile the source of this symbol again\n";
    write_file("a.o", object_bytes("#none|#nothing|"));
    for (const std::string earlier : {"", "earlier"}) {
        if (!earlier.empty()) {
            write_file("w/CompileCmd.txt", earlier);
        }
        testing::internal::CaptureStderr();
        printed(earlier.empty() ? 0 : 1, [] { return GetInstInfo("a.o\0"); });
        EXPECT_EQ(testing::internal::GetCapturedStderr(), missing) << earlier;
    }
    EXPECT_EQ(g_lxprj->strCompileCmd, "earlier");
}
