// The pages of a phrase book.
#pragma once

#include <string>

/// "%" stands for a name.
struct Phrases {
    const char* language;
    const char* world;        ///< for those whose name nobody knows
    const char* greetings[4]; ///< in the order of day_part
    const char* farewell;
};

/// A phrase with the name in its place.
inline std::string fill(std::string phrase, const std::string& name)
{
    auto place = phrase.find('%');
    if (place != std::string::npos) {
        phrase.replace(place, 1, name);
    }
    return phrase;
}
