// What to say to whom, in several languages.
#pragma once

#include "almanac/almanac.h"

#include <string>
#include <vector>

struct Phrases;

class PhraseBook
{
public:
    /// The book of a language, such as "fr"; throws std::invalid_argument when there is none.
    explicit PhraseBook(const std::string& language);

    /// "Bonsoir, Ada !": with a name, else for the whole world.
    std::string greeting(day_part when, const std::string& name) const;

    /// "Au revoir, Ada !"
    std::string farewell(const std::string& name) const;

    /// The languages that have a book.
    static std::vector<std::string> languages();

private:
    const Phrases& phrases;
};
