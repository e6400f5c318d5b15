// Archives: the input as one, and one of the members that its lines name and hold, as "NAME=TEXT".
#include "lltld/archive_file.h"
#include "fuzz/fuzz.h"
#include "fuzz/models.h"

namespace
{

std::string header(const std::string& name, std::size_t size)
{
    std::string text = name + std::string(48 - name.size(), ' ') + std::to_string(size);
    return text + std::string(58 - text.size(), ' ') + "`\n";
}

std::string padded(const std::string& text)
{
    return text + (text.size() % 2 != 0 ? "\n" : "");
}

void check_members(const fuzz::Texts& lines, bool is_thin)
{
    std::string long_names, members;
    for (const std::string& line : lines) {
        const std::string name = line.substr(0, line.find('='));
        members += header("/" + std::to_string(long_names.size()), line.size());
        members += is_thin ? "" : padded(line);
        long_names += name + "/\n";
    }
    const std::string index = std::string(4, '\0') + "main" + '\0';
    const std::string bytes = (is_thin ? "!<thin>\n" : "!<arch>\n") + header("/", index.size()) +
                              padded(index) + header("//", long_names.size()) + padded(long_names) +
                              members;
    const ArchiveFile archive = read_archive_file(bytes);
    fuzz::same("it is thin", is_thin, archive.is_thin);
    fuzz::same("symbols", index.substr(4), std::string(archive.symbols));
    fuzz::Texts expected, actual;
    for (const std::string& line : lines) {
        const std::string name = line.substr(0, line.find('='));
        expected.push_back(name.substr(0, name.find("/\n")) + ":" + (is_thin ? "" : line));
    }
    for (const ArchiveMember& member : archive.members) {
        actual.push_back(std::string(member.name) + ":" + std::string(member.content));
    }
    fuzz::same("members", expected, actual);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    const ArchiveFile archive = read_archive_file(bytes);
    fuzz::holds("the symbols are of the file", fuzz::is_inside(archive.symbols, bytes));
    for (const ArchiveMember& member : archive.members) {
        fuzz::holds("a member is of the file",
                    fuzz::is_inside(member.name, bytes) && fuzz::is_inside(member.content, bytes));
    }
    check_members(fuzz::pieces_of(bytes, '\n'), size % 2 != 0);
    return 0;
}
