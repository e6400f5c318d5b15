// The tuple database, its comparison with the present objects, and what goes when an old
// instrumentation is superseded.
#include "tests/lltld/work_area.h"

#include <sstream>

using TupleDatabase = WorkArea;
using ExpiredInstrumentation = WorkArea;

namespace
{
using Records = std::vector<_STInstInfo>;

/// The texts of records, for the whole test.
InstTexts texts;

Records records_of(const std::string& words) // SOURCE OBJECT SYMBOL ...
{
    Records all;
    std::istringstream in(words);
    const auto kept = [](const std::string& word) { return texts.emplace_back(word).c_str(); };
    for (std::string source, object, symbol; in >> source >> object >> symbol;) {
        all.push_back({kept(source), kept(object), kept(symbol)});
    }
    return all;
}

std::string words_of(const Records& records)
{
    std::string words;
    for (const _STInstInfo& r : records) {
        words += std::string(r.szSrcFileName) + " " + r.szObjFileName + " " + r.szSymbolName + " ";
    }
    return words;
}
} // namespace

TEST_F(TupleDatabase, IsReadAndReplacedInRecordsOf780Bytes)
{
    std::string two, x(259, 'x');
    for (const char* field : {"a.c", "a.o", "a_1", "b.c", "b.o", "b_1"}) {
        two.append(field).append(257, '\0');
    }
    const std::string full = std::string(780, 'x');
    const struct {
        const char* what;
        std::string file, records; ///< as `words_of` writes them
    } rows[] = {
        {"empty", "", ""},
        {"cut in the second source", two.substr(0, 800), "a.c a.o a_1 b.c   "},
        {"cut in the second symbol", two.substr(0, 1301), "a.c a.o a_1 b.c b.o b "},
        {"two records", two, "a.c a.o a_1 b.c b.o b_1 "},
        {"fields without a NUL", full, x + " " + x + " " + x + " "},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        write_file("db", row.file);
        Records records = records_of("z z Z");
        EXPECT_EQ(ReadOldInstInfoFromDb("db", records, texts), 1);
        EXPECT_EQ(words_of(records), "z z Z " + row.records);
    }
    answer("ln db reader"); // one who has the old version open
    for (const std::string name : {"a_1", "b_1"}) {
        leave_record(name);
        WriteDBNameToList(name.c_str());
    }
    Records fresh, old;
    EXPECT_EQ(GetNewInstInfo(instFileList, fresh, old) + WriteNewInstInfoToDb("db"), 2);
    EXPECT_EQ(words_of(fresh), "a.c a.o a_1 b.c b.o b_1 ");
    EXPECT_EQ(read_file("db"), two);
    EXPECT_EQ(read_file("reader"), full);
    EXPECT_EQ(WriteNewInstInfoToDb("w") + WriteNewInstInfoToDb("none/db"), 0);
}

TEST_F(TupleDatabase, ResolvesASymbolByItsIniFile)
{
    const std::string ini = "T/codemeasure/ini/c.ini";
    char src[260] = "?", obj[260] = "?";
    const auto read = [&] { return GetSrcObjPath(src, obj, "c"); };
    EXPECT_EQ(printed(0, read),
              "[TUSK-0x0B074011]: Can not find the initialization file '" + ini + "'!\n");
    write_file(ini, "[Other]\nStubFilePath1=s\n");
    EXPECT_EQ(printed(0, read), "Get the value of 'StubFilePath1' from the initialization file '" +
                                    ini + "' failed!\n");
    write_file(ini, "[StubFiles]\nStubFilePath=\n"); // answers for every longer key
    EXPECT_EQ(read(), 1);
    EXPECT_EQ(std::string(src) + obj, "?");
    g_iSupportSameName = 2; // the same place; only 0 has it in the work area
    EXPECT_EQ(read(), 1);
    g_iSupportSameName = 0;
    write_file("w/ini/c.ini", "[StubFiles]\nStubFilePath1=s\n");
    EXPECT_EQ(read(), 1);
    EXPECT_STREQ(src, "s");
    g_iSupportSameName = 1;
}

TEST_F(TupleDatabase, ExplainsASymbolWithoutIniFileFromTheOldRecords)
{
    const std::string ini = "T/codemeasure/ini/c.ini",
                      log = "[TUSK-0x0B074011]: Can not find the initialization file '" + ini +
                            "'!\n";
    leave_record("a");
    _InstFile nodes[3];
    _InstFileList list;
    for (const char* name : {"a", "c", "a"}) {
        WriteInstFileNameTolist(name, &list, &nodes[list.iCount]);
    }
    Records fresh, old = records_of("o.c o.o other g.c g.o c h.c h.o c");
    const auto resolve = [&] { return GetNewInstInfo(list, fresh, old); };
    EXPECT_EQ(
        printed(0, resolve),
        log +
            "\033[0;32;31mTUSK_FATAL:source code 'g.c' has been instrumented, but an important coverage "
            "file '" +
            ini +
            "' missed. probably you have deleted this file. "
            "please delete 'g.o', and re-compile your source code.\n\033[m");
    EXPECT_EQ(words_of(fresh) + nodes[0].szObjFileName + nodes[2].szObjFileName, "a.c a.o a a.o");
    old.resize(1);
    EXPECT_EQ(printed(0, resolve), log + records_are_gone("must do not"));
    nodes[0].pNext = nullptr; // the count says more than the chain holds
    EXPECT_EQ(resolve(), 1);
}

TEST_F(TupleDatabase, DropsASupersededSymbolAndItsFilesInOrder)
{
    const struct {
        const char* what;
        std::string old, fresh; ///< SOURCE OBJECT SYMBOL ...
        std::string after;      ///< the old records then
        std::string left;       ///< saved objects of S1, S2 and S3 then
    } rows[] = {
        {"nothing is known", "", "a o S1 a o S2", "a o S1 a o S2 ", "S1 S2 S3\n"},
        {"superseded", "a o S1", "a o S2", "a o S2 ", "S2 S3\n"},
        {"other source, object or case", "a p S1 b o S2 A o S3", "a o S4", "a p S1 b o S2 A o S3 ",
         "S1 S2 S3\n"},
        {"among others", "x o S1 a o S2 b o S3", "a o S4", "x o S1 b o S3 a o S4 ", "S1 S3\n"},
        {"a new one supersedes a new one", "a o S1", "a o S2 a o S3", "a o S3 ", "S3\n"},
        {"one for each new one", "a o S1 a o S2", "a o S3", "a o S2 a o S3 ", "S2 S3\n"},
        {"two for two new ones", "a o S1 a o S2", "a o S3 a o S4", "a o S3 a o S4 ", "S3\n"},
        {"the same symbol stays", "a o S1 a o S2", "a o S1", "a o S1 a o S1 ", "S1 S3\n"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        Records old = records_of(row.old), fresh = records_of(row.fresh);
        answer("cd T/codemeasure; mkdir -p obj/before; touch obj/before/S1 obj/before/S2 "
               "obj/before/S3");
        UpdateDB_DelExpiredFile(old, fresh);
        EXPECT_EQ(words_of(old), row.after);
        EXPECT_EQ(answer("ls T/codemeasure/obj/before | paste -sd' '"), row.left);
    }
}

TEST_F(ExpiredInstrumentation, DeletionTakesExactlyTheSymbolsOwnFiles)
{
    const struct {
        const char* what;
        const char* symbol;
        std::string erased;
    } rows[] = {
        {"files of the symbol, not those it begins", "a",
         "db/dba db/dba/x ini/a.ini obj/after/a.d obj/after/a.d/x obj/after/a.link "
         "obj/after/a.x.y obj/before/a"},
        {"no pattern in the symbol itself", "*", "obj/after/*.o obj/before/*"},
        {"a hidden name", ".h", "obj/after/.h.o"},
        {"an empty name is refused", "", ""},
        {"a slash is refused", "/", ""},
        {"the parent is refused", "..", ""},
        {"a way out is refused", "x/../../../../o", ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        answer(
            "mkdir -p o; touch o/o; cd T/codemeasure; mkdir -p db/dba db/dbab obj/before "
            "obj/after/a.d; touch db/dba/x ini/a.ini ini/a.ini2; cd obj/before; touch a a.o '*'; "
            "cd ../after; touch a a.x.y ab.o .a.o .h.o .ho '*.o' a.d/x; ln -sfn ../../../../o "
            "a.link; cd ../../../..; find T o | LC_ALL=C sort >before");
        testing::internal::CaptureStderr();
        DeleteInstInfoFromLLTTEMP(row.symbol);
        EXPECT_EQ(testing::internal::GetCapturedStderr().empty(), !row.erased.empty());
        EXPECT_EQ(answer("find T o | LC_ALL=C sort | comm -3 before - | sed s,^T/codemeasure/,, | "
                         "paste -sd' '"),
                  row.erased + "\n");
    }
}
