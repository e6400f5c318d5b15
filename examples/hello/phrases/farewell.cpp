// Whoever says hello will have to leave one day; hello itself does not.
#include "phrases/phrase_book.h"
#include "phrases/phrases.h"

std::string PhraseBook::farewell(const std::string& name) const
{
    if (name.empty()) {
        return fill(phrases.farewell, phrases.world);
    }
    return fill(phrases.farewell, name);
}
