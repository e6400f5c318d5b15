// Only for looking at what they name: the command itself is passed on as it is.
#include "commonfunc/response_file.h"

#include "commonfunc/file_ops.h"
#include "commonfunc/message.h"

namespace
{

/// Response files may name response files; a ring of them ends after so many.
constexpr int MAX_FILES = 2000;

bool is_space(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

/// Adds the argument and the words of the response file that it names; `files` counts those read.
void add_argument(const std::string& argument, int& files, std::vector<std::string>& out)
{
    out.push_back(argument);
    std::string text;
    if (argument[0] != '@' || files >= MAX_FILES ||
        read_whole_file(argument.substr(1), text) != Reading::done) {
        return;
    }
    if (++files == MAX_FILES) {
        warn("more than %d response files: members named in further ones are not inspected; does "
             "'%s' name itself?",
             MAX_FILES, argument.c_str());
    }
    for (const std::string& word : words_of(text)) {
        add_argument(word, files, out);
    }
}

} // namespace

std::vector<std::string> with_response_files(int argc, char** argv)
{
    std::vector<std::string> arguments;
    int files = 0;
    for (int i = 1; i < argc; ++i) {
        add_argument(argv[i], files, arguments);
    }
    return arguments;
}

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
