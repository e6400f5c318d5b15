// Response files: the input is the content of one. Its words are taken as GNU programs take them.
#include "commonfunc/response_file.h"
#include "commonfunc/message.h"
#include "fuzz/fuzz.h"

#include <cstring>

namespace
{

constexpr char PATH[] = "words";

/// White space separates, quotes join, a backslash takes the next byte as it is.
fuzz::Texts words_in(const std::string& text)
{
    fuzz::Texts words;
    for (std::size_t at = 0; at < text.size();) {
        if (std::memchr(" \t\n\v\f\r", text[at], 6) != nullptr) {
            ++at;
            continue;
        }
        std::string word;
        for (char quote = ' '; at < text.size() &&
                               (quote != ' ' || std::memchr(" \t\n\v\f\r", text[at], 6) == nullptr);
             ++at) {
            const char c = text[at];
            if (c == '\\') {
                word += text.substr(++at, 1); // empty at the end
            } else if (c == quote || (quote == ' ' && (c == '"' || c == '\''))) {
                quote = c == quote ? ' ' : c;
            } else {
                word += c;
            }
            at = std::min(at, text.size() - 1);
        }
        words.push_back(word);
    }
    return words;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::scratch();
    const HeldMessages quiet;
    const std::string text = fuzz::Input(data, size).rest();
    fuzz::write_file(PATH, text);
    fuzz::Texts expected = {"a b"};
    for (const std::string& word : words_in(text.c_str())) { // a NUL ends the text
        if (word == std::string("@") + PATH) {
            return 0; // a ring; the last seed has one, for its end
        }
        expected.push_back(word);
    }
    expected.push_back("@none");
    fuzz::same("words", expected, with_response_files({"a b", std::string("@") + PATH, "@none"}));
    return 0;
}
