#include "phrases/phrase_book.h"

#include "phrases/phrases.h"

#include <stdexcept>

namespace
{

const Phrases ALL[] = {
    {"en", "world", {"Good morning, %!", "Hello, %!", "Good evening, %!", "Hush, %!"}, "Bye, %!"},
    {"de", "Welt", {"Guten Morgen, %!", "Hallo, %!", "Guten Abend, %!", "Pst, %!"}, "Tschuess, %!"},
    {"fr", "monde", {"Bonjour, % !", "Salut, % !", "Bonsoir, % !", "Chut, % !"}, "Au revoir, % !"},
    {"la", "munde", {"Salve, %!", "Ave, %!", "Bonum vesperum, %!", "Tace, %!"}, "Vale, %!"},
};

const Phrases& find(const std::string& language)
{
    for (const Phrases& phrases : ALL) {
        if (language == phrases.language) {
            return phrases;
        }
    }
    throw std::invalid_argument("no phrases in '" + language + "'");
}

} // namespace

PhraseBook::PhraseBook(const std::string& language) : phrases(find(language)) {}

std::vector<std::string> PhraseBook::languages()
{
    std::vector<std::string> names;
    for (const Phrases& phrases : ALL) {
        names.emplace_back(phrases.language);
    }
    return names;
}
