#include "commonfunc/ini_profile.h"
#include "tests/fixture.h"

#include <csignal>
#include <filesystem>
#include <sys/resource.h>

using namespace std::string_literals;

TEST_F(TestDir, ProfilesAreReadByPrefixAndWithOddLayouts)
{
    // What is asked for is always key "key" of section "sec"; "-" is the default.
    const std::pair<std::string, const char*> rows[] = {
        {"[s]\nk=1", "1"},         {"[sec]\nkey=1", "1"},       {"[]\nk=1", "1"},
        {"[sect]\nk=1", "-"},      {"[S]\nk=1", "-"},           {"[s]\nkeys=1", "-"},
        {"[s]\n=1", "-"},          {"[s]\nkey =1", "-"},        {"[s]\nk= 1 \r\n", " 1 "},
        {"[s]\t\r\n\n  k=1", "1"}, {"[s]\na=0\n k=1", "-"},     {"[s]k=a=b", "a=b"},
        {"[s]\nk=\na=2", ""},      {" [s]\nk=1", "-"},          {"x\r[s]\rno\r\rk=1\ra=2", "1"},
        {"[s]\n\n[t]\nk=1", "-"},  {"[s]\n[t\nk=1", "-"},       {"[a\n[s]\nk=1", "-"},
        {"[s\nk=1", "-"},          {"[s]\n[t]\n[s]\nk=3", "3"}, {"[s]\nk=1\nkey=2", "1"},
        {"[s]\nk=1\xFFz", "1"},    {"[s]\n\xFF\nk=1", "-"},     {"[s]\nk=1\0z"s, "1"}};
    for (const auto& [text, expected] : rows) {
        write_file("f", text);
        char out[16] = "";
        EXPECT_EQ(QMRGetPrivateProfileString("sec", "key", out, 16, "-", "f"), *expected != '-');
        EXPECT_STREQ(out, expected) << text;
    }
}

TEST_F(TestDir, ProfileValuesFillTheirBufferOnlyAsFarAsItsSize)
{
    write_file("f", "[s]\nk=-12x\nd=" + std::string(31, '0') + "9\n"); // 31 are read
    const std::tuple<const char*, const char*, int, std::string> rows[] = {
        {"k", "z", 6, "-12x\0\0x"s}, {"k", "z", 4, "-12\0xxx"s},   {"k", "z", 0, "xxxxxxx"},
        {"j", "abcd", 4, "abcdxxx"}, {"j", "ab", 4, "ab\0\0xxx"s}, {"j", nullptr, 4, "xxxxxxx"}};
    for (const auto& [key, fallback, size, expected] : rows) {
        std::string out(7, 'x');
        EXPECT_EQ(read_profile_string("s", key, &out[0], size, fallback, "f"), *key == 'k');
        EXPECT_EQ(out, expected) << key << size;
    }
    EXPECT_EQ(read_profile_int("s", "d", 5, "f") + read_profile_int("s", "j", 5, "f"), 0 + 5);
}

TEST_F(TestDir, ProfilesAreWrittenInPlace)
{
    // What is set is always key "key" of section "sec", to "%%".
    const std::pair<std::string, std::string> rows[] = {
        {"[s]\na=%%%s%%%", "[s]\nkey=%%\na=%%s%%"}, {"", "[sec]\nkey=%%\n"},
        {"[s]\n a=%%%", "[s]\n key=%%\na=%%"},      {"%%", "%%\n[sec]\nkey=%%\n"},
        {"%%\n[s]\n[]b", "%%\n[s]\n[]key=%%\nb"},   {"x\n", "x\n\n[sec]\nkey=%%\n"},
        {"[s]\n\n\n[t]", "[s]\n\n\nkey=%%\n[t]"},   {"[s]", "[s]key=%%\n"},
        {"[s]\nk=1\nz\xFFx", "[s]\nk=%%\nz"},       {"[s]k=\r%%", "[s]k=%%\r%%"},
        {"[s]\nk=1\nz\0x"s, "[s]\nk=%%\nz"}};
    for (const auto& [before, after] : rows) {
        write_file("f", before);
        EXPECT_EQ(write_profile_string("sec", "key", "%%", "f"), 1);
        EXPECT_EQ(read_file("f"), after) << before;
    }
}

TEST_F(TestDir, AWriteThatIsTooLargeOrFailsKeepsTheOldFile)
{
    const std::string large = "[s]\nk=1\n;" + std::string(139990, 'x');
    for (const auto& [size, value, result] :
         {std::tuple(131071U, "2", 1), {131070, "22", 1}, {131071, "22", 0}, {131072, "", 0}}) {
        write_file("f", large.substr(0, size));
        EXPECT_EQ(write_profile_string("s", "k", value, "f"), result) << size;
        EXPECT_EQ(read_file("f") == large.substr(0, size), result == 0) << size;
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
