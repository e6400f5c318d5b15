// Only for looking at what they name: the command itself is passed on as it is.
#include "commonfunc/response_file.h"

#include "commonfunc/file_io.h"
#include "commonfunc/message.h"

#include <cstddef>

namespace
{

/// Response files may name response files; a ring of them ends after so many.
constexpr int MAX_FILES = 2000;

bool is_space(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

/// The words of a response file's text.
std::vector<std::string> words_of(const std::string& text)
{
    std::vector<std::string> words;
    std::string word;
    bool in_word = false;
    char quote = '\0';
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (quote == '\0' && is_space(c)) {
            if (in_word) {
                words.push_back(word);
            }
            word.clear();
            in_word = false;
            continue;
        }
        in_word = true;
        if (c == '\\') {
            ++i;
            word += i < text.size() ? std::string(1, text[i]) : "";
        } else if (c == quote) {
            quote = '\0';
        } else if (quote == '\0' && (c == '"' || c == '\'')) {
            quote = c;
        } else {
            word += c;
        }
    }
    if (in_word) {
        words.push_back(word);
    }
    return words;
}

/// Adds the word, or the words of the response file that it names; `files` counts those read.
void add_word(const std::string& word, int& files, std::vector<std::string>& out)
{
    std::string text;
    const Reading reading = word[0] == '@' && files < MAX_FILES
                                ? read_whole_file(word.substr(1), text)
                                : Reading::missing;
    if (reading != Reading::done && reading != Reading::empty) {
        out.push_back(word);
        return;
    }
    if (++files == MAX_FILES) {
        warn(
            "more than %d response files: what further ones name is not inspected; does '%s' name itself?",
            MAX_FILES, word.c_str());
    }
    for (const std::string& inner : words_of(text.c_str())) { // a NUL ends it for the tools, too
        add_word(inner, files, out);
    }
}

} // namespace

std::vector<std::string> with_response_files(const std::vector<std::string>& words)
{
    std::vector<std::string> out;
    int files = 0;
    for (const std::string& word : words) {
        add_word(word, files, out);
    }
    return out;
}
