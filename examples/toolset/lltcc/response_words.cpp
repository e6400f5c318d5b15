#include "response_words.h"

#include "commonfunc/file_ops.h"

#include <cctype>

namespace
{

/// Files may name files; this deep at most.
constexpr int MAX_DEPTH = 8;

/// Response files as the compilers read them: words between white space, quotes keep it, a
/// backslash takes the next character as it is.
Words split_response(const std::string& text)
{
    Words out;
    bool open = false;
    char quote = '\0';
    for (std::size_t i = 0; i < text.size(); ++i) {
        char c = text[i];
        if (quote == '\0' && std::isspace(static_cast<unsigned char>(c)) != 0) {
            open = false;
            continue;
        }
        if (!open) {
            out.emplace_back();
            open = true;
        }
        if (c == '\\' && i + 1 < text.size()) {
            out.back() += text[++i];
        } else if (c == quote) {
            quote = '\0';
        } else if (quote == '\0' && (c == '"' || c == '\'')) {
            quote = c;
        } else {
            out.back() += c;
        }
    }
    return out;
}

void expand(const Words& words, Words& out, int depth)
{
    for (const std::string& word : words) {
        std::string text;
        if (depth < MAX_DEPTH && word.size() > 1 && word[0] == '@' &&
            read_whole_file(word.substr(1), text) == Reading::done) {
            expand(split_response(text), out, depth + 1);
        } else {
            out.push_back(word);
        }
    }
}

} // namespace

Words with_response_words(const Words& words)
{
    Words out;
    expand(words, out, 0);
    return out;
}
