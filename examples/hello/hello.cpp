// Greets people: hello -l fr -t 19 -d 1789-07-14 Ada Grace
#include "almanac/almanac.h"
#include "numbers/numbers.h"
#include "phrases/phrase_book.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <stdexcept>
#include <unistd.h>

namespace
{

int usage()
{
    std::fputs("usage: hello [-l LANGUAGE] [-t HOUR] [-d YEAR-MONTH-DAY] NAME...\nlanguages:",
               stderr);
    for (const std::string& language : PhraseBook::languages()) {
        std::fprintf(stderr, " %s", language.c_str());
    }
    std::fputc('\n', stderr);
    return 2;
}

int current_hour()
{
    std::time_t now = std::time(nullptr);
    return std::localtime(&now)->tm_hour;
}

// Prints "Tuesday, 14th VII MDCCLXXXIX".
void print_date(const char* date)
{
    int year = 0;
    int month = 0;
    int day = 0;
    char numerals[3][16];
    std::sscanf(date, "%d-%d-%d", &year, &month, &day);
    const char* name = weekday(year, month, day);
    if (name == nullptr || roman(numerals[2], sizeof numerals[2], year) == nullptr) {
        throw std::invalid_argument("'" + std::string(date) + "' is not a day that can be written");
    }
    std::printf("%s, %s %s %s\n", name, ordinal(numerals[0], sizeof numerals[0], day),
                roman(numerals[1], sizeof numerals[1], month), numerals[2]);
}

void greet(const PhraseBook& book, int hour, char** names, int count)
{
    char words[80];
    if (count == 0) {
        std::puts(book.greeting(part_of_day(hour), "").c_str());
        return;
    }
    for (int i = 0; i < count; ++i) {
        std::puts(book.greeting(part_of_day(hour), names[i]).c_str());
    }
    std::printf("(%s %s)\n", in_words(words, sizeof words, count), count == 1 ? "guest" : "guests");
}

} // namespace

int main(int argc, char** argv)
{
    const char* language = "en";
    const char* date = nullptr;
    int hour = -1;
    for (int option; (option = getopt(argc, argv, "l:t:d:")) != -1;) {
        switch (option) {
        case 'l':
            language = optarg;
            break;
        case 't':
            hour = std::atoi(optarg);
            break;
        case 'd':
            date = optarg;
            break;
        default:
            return usage();
        }
    }
    try {
        const PhraseBook book(language);
        if (date != nullptr) {
            print_date(date);
        }
        greet(book, hour >= 0 ? hour : current_hour(), argv + optind, argc - optind);
    } catch (const std::invalid_argument& error) {
        std::fprintf(stderr, "hello: %s\n", error.what());
        return usage();
    }
    return 0;
}
