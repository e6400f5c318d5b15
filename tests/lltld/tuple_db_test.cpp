// The tuple database, its comparison with the present objects, and what goes when an old
// instrumentation is superseded.
#include "tests/lltld/work_area.h"

#include <sstream>

namespace
{
using Records = std::vector<_STInstInfo>;

Records records_of(const std::string& words) // SOURCE OBJECT SYMBOL ...
{
    Records all;
    std::istringstream in(words);
    for (_STInstInfo r; in >> r.szSrcFileName >> r.szObjFileName >> r.szSymbolName;) {
        all.push_back(r);
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

TEST_F(WorkArea, TheDatabaseIsReadAndReplacedInRecordsOf780Bytes)
{
    std::string two, x(259, 'x');
    for (const char* field : {"a.c", "a.o", "a_1", "b.c", "b.o", "b_1"}) {
        two.append(field).append(257, '\0');
    }
    const std::pair<std::string, std::string> rows[] = {
        {"", ""},
        {two.substr(0, 800), "a.c a.o a_1 b.c   "},
        {two.substr(0, 1301), "a.c a.o a_1 b.c b.o b "},
        {two, "a.c a.o a_1 b.c b.o b_1 "},
        {std::string(780, 'x'), x + " " + x + " " + x + " "}};
    Records fresh, old;
    for (const auto& [content, words] : rows) {
        write_file("db", content);
        Records records = records_of("z z Z");
        EXPECT_EQ(ReadOldInstInfoFromDb("db", records), 1);
        EXPECT_EQ(words_of(records), "z z Z " + words) << content.size();
    }
    answer("ln db reader"); // one who has the old version open
    for (const std::string name : {"a_1", "b_1"}) {
        leave_record(name);
        WriteDBNameToList(name.c_str());
    }
    EXPECT_EQ(GetNewInstInfo(instFileList, fresh, old) + WriteNewInstInfoToDb("db"), 2);
    EXPECT_EQ(words_of(fresh), rows[3].second);
    EXPECT_EQ(read_file("db") + read_file("reader"), two + rows[4].first);
    EXPECT_EQ(WriteNewInstInfoToDb("w") + WriteNewInstInfoToDb("none/db"), 0);
}

TEST_F(WorkArea, ASymbolIsResolvedByItsIniFileOrExplainedFromTheOldRecords)
{
    const std::string ini = "T/codemeasure/ini/c.ini";
    char src[260] = "?", obj[260] = "?";
    const auto read = [&] { return GetSrcObjPath(src, obj, "c"); };
    write_file(ini, "[Other]\nStubFilePath1=s\n");
    EXPECT_EQ(printed(0, read), "Get the value of 'StubFilePath1' from the initialization file '" +
                                    ini + "' failed!\n");
    write_file(ini, "[StubFiles]\nStubFilePath=\n"); // answers for every longer key
    EXPECT_EQ(read(), 1);
    EXPECT_EQ(std::string(src) + obj, "?");
    std::filesystem::remove(ini);
    leave_record("a");
    _InstFile nodes[3];
    _InstFileList list;
    for (const char* name : {"a", "c", "a"}) {
        WriteInstFileNameTolist(name, &list, &nodes[list.iCount]);
    }
    Records fresh, old = records_of("o.c o.o other g.c g.o c h.c h.o c");
    const auto resolve = [&] { return GetNewInstInfo(list, fresh, old); };
    const std::string known = printed(0, resolve);
    EXPECT_EQ(words_of(fresh) + nodes[0].szObjFileName + nodes[2].szObjFileName, "a.c a.o a a.o");
    old.resize(1);
    write_file("told", known + printed(0, resolve));
    EXPECT_EQ(answer("md5sum <told"), "32327d4a2ddf348926714cd4e1007f33  -\n");
    nodes[0].pNext = nullptr; // the count says more than the chain holds
    EXPECT_EQ(resolve(), 1);
}

TEST_F(WorkArea, ASupersededSymbolIsDeletedAndReplacedInOrder)
{
    const std::tuple<std::string, std::string, std::string, std::string> rows[] = {
        {"", "a o S1 a o S2", "a o S1 a o S2 ", "S1\nS2\nS3\n"},
        {"a o S1", "a o S2", "a o S2 ", "S2\nS3\n"},
        {"a p S1 b o S2 A o S3", "a o S4", "a p S1 b o S2 A o S3 ", "S1\nS2\nS3\n"},
        {"x o S1 a o S2 b o S3", "a o S4", "x o S1 b o S3 a o S4 ", "S1\nS3\n"},
        {"a o S1", "a o S2 a o S3", "a o S3 ", "S3\n"},
        {"a o S1 a o S2", "a o S3", "a o S2 a o S3 ", "S2\nS3\n"},
        {"a o S1 a o S2", "a o S3 a o S4", "a o S3 a o S4 ", "S3\n"},
        {"a o S1 a o S2", "a o S1", "a o S1 a o S1 ", "S1\nS3\n"}};
    for (const auto& [before, present, after, left] : rows) {
        Records old = records_of(before), fresh = records_of(present);
        answer("cd T/codemeasure; mkdir -p obj/before; touch obj/before/S1 obj/before/S2 "
               "obj/before/S3");
        UpdateDB_DelExpiredFile(old, fresh);
        EXPECT_EQ(words_of(old) + answer("ls T/codemeasure/obj/before"), after + left) << before;
    }
}

TEST_F(WorkArea, DeletionTakesExactlyTheSymbolsOwnFiles)
{
    const std::pair<const char*, std::string> rows[] = {
        {"a", "db/dba db/dba/x ini/a.ini obj/after/a.d obj/after/a.d/x obj/after/a.link "
              "obj/after/a.x.y obj/before/a"},
        {"*", "obj/after/*.o obj/before/*"}, // no pattern in the symbol itself
        {".h", "obj/after/.h.o"},
        {"", ""},
        {"/", ""},
        {"..", ""},
        {"x/../../../../o", ""}};
    for (const auto& [symbol, erased] : rows) {
        answer(
            "mkdir -p o; touch o/o; cd T/codemeasure; mkdir -p db/dba db/dbab obj/before "
            "obj/after/a.d; touch db/dba/x ini/a.ini ini/a.ini2; cd obj/before; touch a a.o '*'; "
            "cd ../after; touch a a.x.y ab.o .a.o .h.o .ho '*.o' a.d/x; ln -sfn ../../../../o "
            "a.link; cd ../../../..; find T o | LC_ALL=C sort >before");
        testing::internal::CaptureStderr();
        DeleteInstInfoFromLLTTEMP(symbol);
        EXPECT_EQ(testing::internal::GetCapturedStderr().empty(), !erased.empty()); // refused
        EXPECT_EQ(answer("find T o | LC_ALL=C sort | comm -3 before - | sed s,^T/codemeasure/,, | "
                         "paste -sd' '"),
                  erased + "\n")
            << symbol;
    }
}
