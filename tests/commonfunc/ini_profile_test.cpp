#include "commonfunc/ini_profile.h"
#include "tests/fixture.h"

#include <csignal>
#include <filesystem>
#include <sys/resource.h>

using namespace std::string_literals;
using IniProfile = TestDir;

TEST_F(IniProfile, IsReadByPrefixAndWithOddLayouts)
{
    const struct {
        const char* what;
        std::string file;
        const char* value; ///< of key "key" in section "sec", whose default is "-"
    } rows[] = {
        {"prefixes of both names answer", "[s]\nk=1", "1"},
        {"whole names answer", "[sec]\nkey=1", "1"},
        {"an empty section name answers", "[]\nk=1", "1"},
        {"a longer section name does not", "[sect]\nk=1", "-"},
        {"case counts", "[S]\nk=1", "-"},
        {"a longer key does not", "[s]\nkeys=1", "-"},
        {"an empty key does not", "[s]\n=1", "-"},
        {"a blank belongs to the key", "[s]\nkey =1", "-"},
        {"blanks belong to the value", "[s]\nk= 1 \r\n", " 1 "},
        {"blanks before the first key", "[s]\t\r\n\n  k=1", "1"},
        {"blanks before a later key", "[s]\na=0\n k=1", "-"},
        {"a key on the section's line, = in the value", "[s]k=a=b", "a=b"},
        {"an empty value is found", "[s]\nk=\na=2", ""},
        {"a section is at the start of a line", " [s]\nk=1", "-"},
        {"a carriage return ends a line", "x\r[s]\rno\r\rk=1\ra=2", "1"},
        {"the next section ends this one", "[s]\n\n[t]\nk=1", "-"},
        {"an open section ends it as well", "[s]\n[t\nk=1", "-"},
        {"an open section runs to the next bracket", "[a\n[s]\nk=1", "-"},
        {"an open section runs to the end", "[s\nk=1", "-"},
        {"an empty section gives way to a later one", "[s]\n[t]\n[s]\nk=3", "3"},
        {"the first key wins", "[s]\nk=1\nkey=2", "1"},
        {"byte 255 ends the file in a value", "[s]\nk=1\xFFz", "1"},
        {"byte 255 ends the file before the key", "[s]\n\xFF\nk=1", "-"},
        {"a NUL ends the file", "[s]\nk=1\0z"s, "1"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        write_file("f", row.file);
        char out[16] = "";
        EXPECT_EQ(QMRGetPrivateProfileString("sec", "key", out, 16, "-", "f"), *row.value != '-');
        EXPECT_STREQ(out, row.value);
    }
}

TEST_F(IniProfile, ValuesFillTheirBufferOnlyAsFarAsItsSize)
{
    write_file("f", "[s]\nk=-12x\nd=" + std::string(31, '0') + "9\n"); // 31 are read
    const struct {
        const char* what;
        const char* key;
        const char* fallback;
        int size;
        std::string buffer; ///< 7 bytes, "x" where untouched
    } rows[] = {
        {"a value is filled up with NUL", "k", "z", 6, "-12x\0\0x"s},
        {"a long value is cut", "k", "z", 4, "-12\0xxx"s},
        {"no room", "k", "z", 0, "xxxxxxx"},
        {"a long default has no NUL", "j", "abcd", 4, "abcdxxx"},
        {"a short default is filled up", "j", "ab", 4, "ab\0\0xxx"s},
        {"no default", "j", nullptr, 4, "xxxxxxx"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        std::string out(7, 'x');
        EXPECT_EQ(read_profile_string("s", row.key, &out[0], row.size, row.fallback, "f"),
                  *row.key == 'k');
        EXPECT_EQ(out, row.buffer);
    }
    EXPECT_EQ(read_profile_int("s", "d", 5, "f"), 0);
    EXPECT_EQ(read_profile_int("s", "j", 5, "f"), 5);
}

TEST_F(IniProfile, IsWrittenInPlaceWithPercentPairsSqueezed)
{
    const struct {
        const char* what;
        std::string before, after; ///< of setting "key" in section "sec" to "%%"
    } rows[] = {
        {"a new key comes first", "[s]\na=%%%s%%%", "[s]\nkey=%%\na=%%s%%"},
        {"an empty file", "", "[sec]\nkey=%%\n"},
        {"after the blanks of the section", "[s]\n a=%%%", "[s]\n key=%%\na=%%"},
        {"a new section, nothing squeezed", "%%", "%%\n[sec]\nkey=%%\n"},
        {"lines without a key are kept", "%%\n[s]\n[]b", "%%\n[s]\n[]key=%%\nb"},
        {"a new section after a line end", "x\n", "x\n\n[sec]\nkey=%%\n"},
        {"an empty section", "[s]\n\n\n[t]", "[s]\n\n\nkey=%%\n[t]"},
        {"a section at the end", "[s]", "[s]key=%%\n"},
        {"byte 255 ends the file", "[s]\nk=1\nz\xFFx", "[s]\nk=%%\nz"},
        {"a value up to the carriage return", "[s]k=\r%%", "[s]k=%%\r%%"},
        {"a NUL ends the file", "[s]\nk=1\nz\0x"s, "[s]\nk=%%\nz"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        write_file("f", row.before);
        EXPECT_EQ(write_profile_string("sec", "key", "%%", "f"), 1);
        EXPECT_EQ(read_file("f"), row.after);
    }
}

TEST_F(IniProfile, AWriteThatIsTooLargeOrFailsKeepsTheOldFile)
{
    const std::string large = "[s]\nk=1\n;" + std::string(139990, 'x');
    const struct {
        const char* what;
        std::size_t size;
        const char* value;
        int result;
    } rows[] = {
        {"of the same length", 131071, "2", 1},
        {"just within the buffer", 131070, "22", 1},
        {"one byte beyond the buffer", 131071, "22", 0},
        {"a file beyond the buffer", 131072, "", 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        write_file("f", large.substr(0, row.size));
        EXPECT_EQ(write_profile_string("s", "k", row.value, "f"), row.result);
        EXPECT_EQ(read_file("f") == large.substr(0, row.size), row.result == 0);
    }
    std::string buffer(INI_BUFFER_SIZE + 1, 'x');
    int length = 0;
    EXPECT_EQ(load_ini_file("f", &buffer[0], &length), 1);
    EXPECT_TRUE(length == 131071 && buffer.find('\0') == 131071 && buffer.back() == 'x') << length;
    write_file("f", large.substr(0, 9000));
    const rlimit limit = {4096, 4096}; // a write beyond it fails half way
    EXPECT_EXIT((std::signal(SIGXFSZ, SIG_IGN), ::setrlimit(RLIMIT_FSIZE, &limit),
                 std::exit(write_profile_string("s", "k", "2", "f"))),
                testing::ExitedWithCode(0), "lltwrapper: ");
    EXPECT_TRUE(read_file("f") == large.substr(0, 9000));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator("."), {}), 1);
}
