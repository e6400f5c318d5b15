// The tuple database, and what goes when an old instrumentation is superseded.
#include "tests/lltld/work_area.h"

#include <sstream>

namespace
{
std::vector<_STInstInfo> records_of(const std::string& words) // SOURCE OBJECT SYMBOL ...
{
    std::vector<_STInstInfo> all;
    std::istringstream in(words);
    for (_STInstInfo r; in >> r.szSrcFileName >> r.szObjFileName >> r.szSymbolName;) {
        all.push_back(r);
    }
    return all;
}

std::string words_of(const std::vector<_STInstInfo>& records)
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
        {two, "a.c a.o a_1 b.c b.o b_1 "},
        {two.substr(0, 800), "a.c a.o a_1 b.c   "},
        {std::string(780, 'x'), x + " " + x + " " + x + " "}};
    std::vector<_STInstInfo> fresh, old;
    for (const auto& [content, words] : rows) {
        write_file("db", content);
        std::vector<_STInstInfo> records = records_of("z z Z");
        EXPECT_EQ(ReadOldInstInfoFromDb("db", records), 1);
        EXPECT_EQ(words_of(records), "z z Z " + words) << content.size();
    }
    answer("ln db reader"); // one who has the old version open
    for (const std::string name : {"a_1", "b_1"}) {
        leave_record(name);
        WriteDBNameToList(name.c_str());
    }
    EXPECT_EQ(GetNewInstInfo(instFileList, fresh, old) + WriteNewInstInfoToDb("db"), 2);
    EXPECT_EQ(words_of(fresh) + read_file("db"), rows[0].second + two);
    EXPECT_EQ(read_file("reader"), rows[2].first);
}

TEST_F(WorkArea, ASupersededSymbolIsDeletedAndReplacedInOrder)
{
    const std::tuple<std::string, std::string, std::string, std::string> rows[] = {
        {"", "a o S1 a o S2", "a o S1 a o S2 ", "S1\nS2\nS3\n"},
        {"a p S1 b o S2 A o S3", "a o S4", "a p S1 b o S2 A o S3 ", "S1\nS2\nS3\n"},
        {"x o S1 a o S2 b o S3", "a o S4", "x o S1 b o S3 a o S4 ", "S1\nS3\n"},
        {"a o S1", "a o S2 a o S3", "a o S3 ", "S3\n"},
        {"a o S1 a o S2", "a o S3", "a o S2 a o S3 ", "S2\nS3\n"},
        {"a o S1 a o S2", "a o S3 a o S4", "a o S3 a o S4 ", "S3\n"},
        {"a o S1 a o S2", "a o S1", "a o S1 a o S1 ", "S1\nS3\n"}};
    for (const auto& [before, present, after, left] : rows) {
        std::vector<_STInstInfo> old = records_of(before), fresh = records_of(present);
        answer("cd T/codemeasure/obj/before; touch S1 S2 S3");
        UpdateDB_DelExpiredFile(old, fresh);
        EXPECT_EQ(words_of(old) + answer("ls T/codemeasure/obj/before"), after + left) << before;
    }
}

TEST_F(WorkArea, DeletionTakesExactlyTheSymbolsOwnFiles)
{
    const std::pair<const char*, std::string> rows[] = {
        {"a", "db/dba ini/a.ini obj/after/a.d obj/after/a.link obj/after/a.x.y obj/before/a"},
        {"*", "obj/after/*.o obj/before/*"}, // no pattern in the symbol itself
        {".h", "obj/after/.h.o"},
        {"", ""},
        {"x/../../../../o", ""}};
    for (const auto& [symbol, erased] : rows) {
        answer("mkdir -p o/o; cd T/codemeasure; mkdir -p db/dba db/dbab obj/after/a.d; touch "
               "ini/a.ini ini/a.ini2; cd obj/before; touch a a.o '*'; cd ../after; touch a a.x.y "
               "ab.o .a.o .h.o .ho '*.o'; ln -sfn ../../../../o a.link; cd ../../../..; find T o "
               "| LC_ALL=C sort >before");
        testing::internal::CaptureStderr();
        DeleteInstInfoFromLLTTEMP(symbol);
        EXPECT_EQ(testing::internal::GetCapturedStderr().empty(), !erased.empty()); // refused
        const std::string compare = "find T o | LC_ALL=C sort | comm -3 before - | ";
        EXPECT_EQ(answer(compare + "sed s,T/codemeasure/,, | paste -sd' '"), erased + "\n");
    }
}
