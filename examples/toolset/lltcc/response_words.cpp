// The compiler gets the command as it was; the files are opened to find out what it asks for.
#include "response_words.h"

#include "commonfunc/file_ops.h"
#include "commonfunc/response_file.h"

namespace
{

/// Files may name files; this deep at most.
constexpr int MAX_DEPTH = 8;

void expand(const Words& words, Words& out, int depth)
{
    for (const std::string& word : words) {
        std::string text;
        if (depth < MAX_DEPTH && word.size() > 1 && word[0] == '@' &&
            read_whole_file(word.substr(1), text) == Reading::done) {
            expand(words_of(text), out, depth + 1);
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
