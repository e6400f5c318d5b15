#include "phrases/phrase_book.h"
#include "phrases/phrases.h"

std::string PhraseBook::greeting(day_part when, const std::string& name) const
{
    return fill(phrases.greetings[when], name.empty() ? phrases.world : name);
}
