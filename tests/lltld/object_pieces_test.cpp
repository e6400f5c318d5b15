// Objects read in pieces, held against the search over the whole content.
#include "lltld/inst_file_list.h"
#include "tests/lltld/work_area.h"

namespace
{

using ObjectPieces = WorkArea;

/// Where the pattern is first found from `from` on, by the rule alone: an attempt compares byte for
/// byte, and the next one begins after the byte that differs.
std::size_t model_find(const std::string& text, const std::string& pattern, std::size_t from)
{
    while (from < text.size()) {
        std::size_t i = 0;
        while (i < pattern.size() && from + i < text.size() && text[from + i] == pattern[i]) {
            ++i;
        }
        if (i == pattern.size()) {
            return from;
        }
        from += i + 1;
    }
    return text.npos;
}

/// "TEXT=NAME|" of each symbol; "loader" for an object with a test loader.
std::string model(const std::string& text)
{
    const std::string prefix = object_bytes("#");
    if (model_find(text, "ZJ_Start_", 0) != text.npos) {
        return "loader";
    }
    std::string found;
    for (std::size_t at = 0; (at = model_find(text, prefix, at)) != text.npos;) {
        const std::string shown = text.substr(at, text.find('\0', at) - at);
        const std::string name = shown.substr(prefix.size(), shown.find(' ') - prefix.size());
        found += shown + "=" + name + "|";
        at += prefix.size() + name.size();
    }
    return found;
}

std::string scanned(std::size_t piece)
{
    ScannedObject object;
    EXPECT_TRUE(scan_object("a.o", object, piece));
    std::string found;
    for (const CoverageSymbol& symbol : object.symbols) {
        found += object.runs[symbol.run].substr(symbol.offset) + "=" + symbol.name + "|";
    }
    return object.has_test_loader ? "loader" : found;
}

} // namespace

TEST_F(ObjectPieces, SymbolsAreThoseOfTheWholeFileWhereverAPieceEnds)
{
    const char* const rows[] = {
        "|ELF|#foo|#bar tail #baz|#|",
        "g#x|gg#x|g_#a|#b",
        "#a#b c|#",
        "x#a b|g_QMRCovDat|a_|#",
        "#a g_QMR|CovData_x|#b",
        "#a|ZZJ_Start_|ZJ_Start|_|",
        "#a|xZJ_Start_m|#b",
        "# | #  #a|",
    };
    for (const std::string row : rows) {
        const std::string text = object_bytes(row);
        write_file("a.o", text);
        for (std::size_t piece = 1; piece <= text.size() + 1; ++piece) {
            EXPECT_EQ(scanned(piece), model(text)) << row << " in pieces of " << piece;
        }
    }
    const std::string prefix = object_bytes("#");
    EXPECT_EQ(model(object_bytes("#a b#c|")), prefix + "a b" + prefix + "c=a|" + prefix + "c=c|");
}
