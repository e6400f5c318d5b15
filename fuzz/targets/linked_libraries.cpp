// The list of linked libraries. What is read stands in the text, and comes back the same.
#include "contract/linked_libraries.h"
#include "commonfunc/text_lines.h"
#include "fuzz/fuzz.h"
#include "fuzz/models.h"

#include <map>

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    std::vector<std::string> lines = fuzz::pieces_of(text, '\n');
    bool is_sound = lines[0] == "lltlibraries 1" && lines.back().empty();
    std::map<std::string, std::string> last; // of the library so far
    std::string expected = lines[0] + "\n", symbols;
    const auto end_library = [&] {
        if (last.count("library") != 0) {
            expected += "library " + last["library"] + "\narea " + last["area"] + "\nbuid " +
                        last["buid"] + "\n" + symbols;
        }
        last.clear();
        symbols.clear();
    };
    for (std::size_t i = 1; i + 1 < lines.size(); ++i) {
        const std::size_t blank = std::min(lines[i].find(' '), lines[i].size());
        const std::string key = lines[i].substr(0, blank);
        const std::string value = lines[i].substr(std::min(blank + 1, lines[i].size()));
        if (key == "library") {
            end_library();
        }
        is_sound = is_sound && (key == "library" || last.count("library") != 0);
        last[key] = value;
        symbols += key == "symbol" ? "symbol " + value + "\n" : "";
    }
    end_library();
    try {
        const std::string written = to_text(read_linked_libraries(text));
        fuzz::holds("only a sound list is read", is_sound);
        fuzz::same("list, written again", expected, written);
    } catch (const FormatError&) {
        fuzz::holds("a sound list is read", !is_sound);
    }
    return 0;
}
