// Response files are read only to see what they name: the command itself is passed on as it is.
#include "commonfunc/response_file.h"

#include "commonfunc/file_io.h"
#include "commonfunc/message.h"

#include <cerrno>
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

/// Reads the response file that the word names; false when it names none that can be read.
bool read_response_file(const std::string& word, std::string& text)
{
    if (word[0] != '@') {
        return false;
    }
    const Reading reading = read_whole_file(word.substr(1), text);
    if (reading == Reading::not_opened || reading == Reading::no_memory ||
        (reading == Reading::failed && errno != EISDIR)) {
        warn("the response file '%s' is not read: %s; what it names is not inspected",
             word.c_str() + 1, why_not_read());
    }
    return reading == Reading::done || reading == Reading::empty;
}

} // namespace

std::vector<std::string> with_response_files(const std::vector<std::string>& words)
{
    std::vector<std::string> out;
    std::vector<std::string> ahead(words.rbegin(), words.rend()); // the next one last
    int files = 0;
    while (!ahead.empty()) {
        const std::string word = ahead.back();
        ahead.pop_back();
        std::string text;
        if (files >= MAX_FILES || !read_response_file(word, text)) {
            out.push_back(word);
            continue;
        }
        if (++files == MAX_FILES) {
            warn(
                "more than %d response files: what further ones name is not inspected; does '%s' name itself?",
                MAX_FILES, word.c_str());
        }
        const std::vector<std::string> inner =
            words_of(text.c_str()); // a NUL ends it for the tools, too
        ahead.insert(ahead.end(), inner.rbegin(), inner.rend());
    }
    return out;
}
