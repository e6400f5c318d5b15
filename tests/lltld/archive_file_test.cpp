// Archives as GNU ar writes them, byte by byte.
#include "lltld/archive_file.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace
{

/// A header of ar(5) and the content after it.
std::string member(std::string name, const std::string& content, std::size_t size)
{
    name.resize(16, ' ');
    std::string digits = std::to_string(size);
    digits.resize(10, ' ');
    return name + "0           0     0     644     " + digits + "`\n" + content +
           (content.size() % 2 != 0 ? "\n" : "");
}

std::string member(const std::string& name, const std::string& content)
{
    return member(name, content, content.size());
}

/// "NAME=CONTENT|..." of the members, and after ":" the symbols with "," for each NUL.
std::string shown(const std::string& bytes)
{
    const ArchiveFile archive = read_archive_file(bytes);
    std::string text;
    for (const ArchiveMember& one : archive.members) {
        text += std::string(one.name) + "=" + std::string(one.content) + "|";
    }
    std::string symbols(archive.symbols);
    std::replace(symbols.begin(), symbols.end(), '\0', ',');
    return text + ":" + symbols;
}

} // namespace

TEST(ArchiveFile, HasTheMembersThatArPutIn)
{
    const std::string arch = "!<arch>\n";
    const std::string thin = "!<thin>\n";
    const std::string index("\0\0\0\2........f\0g\0", 16);
    const std::string wide("\0\0\0\0\0\0\0\1........f\0", 18);
    const std::string names = "a_name_of_20_letters/\nother_long_name.object/\n";
    const struct {
        const char* what;
        std::string bytes, expected;
    } rows[] = {
        {"plain", arch + member("a.o/", "xyz") + member("b c.o/", "uv"), "a.o=xyz|b c.o=uv|:"},
        {"index", arch + member("/", index) + member("a.o/", "x"), "a.o=x|:f,g,"},
        {"wide index", arch + member("/SYM64/", wide) + member("a.o/", "x"), "a.o=x|:f,"},
        {"long names", arch + member("//", names) + member("/22", "x") + member("/0", "y"),
         "other_long_name.object=x|a_name_of_20_letters=y|:"},
        {"thin",
         thin + member("//", "sub/a.o/\n/abs/b.o/\n") + member("/0", "", 9) +
             member("/9", "", 1000000),
         "sub/a.o=|/abs/b.o=|:"},
        {"name without a slash", arch + member("a.o", "x"), "a.o=x|:"},
        {"none", "\177ELF" + member("a.o/", "x"), ":"},
        {"cut in the content", arch + member("a.o/", "xy", 100), "a.o=xy|:"},
        {"cut in a header", arch + member("a.o/", "xy") + "b.o/   ", "a.o=xy|:"},
        {"index that promises too much", arch + member("/", {"\377\377\377\377f\0", 6}), ":"},
        {"long name out of range", arch + member("//", names) + member("/999", "x"), "=x|:"},
        {"no size", arch + member("a.o/", "", 0) + member("b.o/", "x"), "a.o=|b.o=x|:"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(shown(row.bytes), row.expected) << row.what;
    }
}
