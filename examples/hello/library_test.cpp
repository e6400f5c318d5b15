// Checks what the libraries return. Some of their lines stay without a test: a coverage report is
// there to show which.
#include "almanac/almanac.h"
#include "numbers/numbers.h"
#include "phrases/phrase_book.h"

#include <cstdio>
#include <cstring>

namespace
{

int failures = 0;

void expect(const char* what, const char* expected, const char* actual)
{
    if (actual != nullptr && std::strcmp(expected, actual) == 0) {
        return;
    }
    std::printf("%s: expected '%s', got '%s'\n", what, expected, actual ? actual : "nothing");
    ++failures;
}

void test_numbers()
{
    const struct {
        int number;
        const char *roman, *ordinal, *words;
    } cases[] = {
        {1, "I", "1st", "one"},
        {4, "IV", "4th", "four"},
        {12, "XII", "12th", "twelve"},
        {23, "XXIII", "23rd", "twenty-three"},
        {40, "XL", "40th", "forty"},
        {342, "CCCXLII", "342nd", "three hundred and forty-two"},
        {1994, "MCMXCIV", "1994th", "one thousand nine hundred and ninety-four"},
    };
    char text[80];
    for (const auto& item : cases) {
        expect("roman", item.roman, roman(text, sizeof text, item.number));
        expect("ordinal", item.ordinal, ordinal(text, sizeof text, item.number));
        expect("in_words", item.words, in_words(text, sizeof text, item.number));
    }
}

void test_calendar()
{
    expect("a leap day", "Tuesday", weekday(2000, 2, 29));
    expect("the day after", "Wednesday", weekday(2000, 3, 1));
    expect("a Friday the 13th", "Friday", weekday(2026, 2, 13));
}

void test_phrases()
{
    const PhraseBook latin("la");
    expect("greeting", "Salve, Ada!", latin.greeting(MORNING, "Ada").c_str());
    expect("greeting", "Ave, munde!", latin.greeting(AFTERNOON, "").c_str());
}

} // namespace

int main()
{
    test_numbers();
    test_calendar();
    test_phrases();
    std::puts(failures == 0 ? "library test passed" : "library test FAILED");
    return failures == 0 ? 0 : 1;
}
