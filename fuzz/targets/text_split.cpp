// Lists of settings: two separators and a text.
#include "commonfunc/text.h"
#include "fuzz/fuzz.h"
#include "fuzz/models.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::Input input(data, size);
    const char outer = input.byte(), inner = input.byte();
    const std::string text = input.rest().c_str();
    const std::vector<char> exact(text.c_str(), text.c_str() + text.size() + 1);
    fuzz::Texts expected = fuzz::pieces_of(outer != '\0' ? text : "", outer);
    std::map<std::string, std::string> values = {{"kept", "x"}};
    bool all_are_pairs = true;
    for (const std::string& piece : expected) {
        const std::size_t at = piece.find(inner);
        all_are_pairs = all_are_pairs && at != std::string::npos;
        if (all_are_pairs) {
            values[piece.substr(0, at)] = piece.substr(at + 1);
        }
    }
    std::map<std::string, std::string> pairs = {{"kept", "x"}};
    fuzz::same("all are pairs", all_are_pairs, strsplit_m(exact.data(), outer, inner, pairs));
    fuzz::holds("the pairs are those", values == pairs);
    fuzz::Texts pieces = {"kept"};
    strsplit_v(exact.data(), outer, pieces);
    expected.insert(expected.begin(), "kept");
    fuzz::same("pieces", expected, pieces);
    return 0;
}
