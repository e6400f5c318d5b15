// Each library begins with its own line; the lines after it are about it.
#include "contract/linked_libraries.h"

#include "commonfunc/text_lines.h"

namespace
{

constexpr char FORMAT[] = "lltlibraries 1";

} // namespace

std::string to_text(const std::vector<LinkedLibrary>& libraries)
{
    std::string text = FORMAT + std::string("\n");
    for (const LinkedLibrary& library : libraries) {
        text +=
            "library " + library.path + "\narea " + library.area + "\nbuid " + library.buid + "\n";
        for (const std::string& symbol : library.symbols) {
            text += "symbol " + symbol + "\n";
        }
    }
    return text;
}

std::vector<LinkedLibrary> read_linked_libraries(std::string_view text)
{
    TextLines lines(text);
    if (!lines.next() || lines.rest_of_line() != FORMAT) {
        throw FormatError(1, "this is no list of libraries of format 1");
    }
    std::vector<LinkedLibrary> libraries;
    while (lines.next()) {
        const std::string_view key = lines.word();
        if (key == "library") {
            libraries.emplace_back().path = lines.rest_of_line();
        } else if (libraries.empty()) {
            lines.fail("no library stands before this line");
        } else if (key == "area") {
            libraries.back().area = lines.rest_of_line();
        } else if (key == "buid") {
            libraries.back().buid = lines.rest_of_line();
        } else if (key == "symbol") {
            libraries.back().symbols.emplace_back(lines.rest_of_line());
        }
    }
    return libraries;
}
