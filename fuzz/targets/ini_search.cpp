// A search in an INI text, and the text with a value set: section, key and value on a line each,
// then the text.
#include "commonfunc/ini_profile.h"
#include "fuzz/fuzz.h"
#include "fuzz/models.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::Input input(data, size);
    const std::string section = input.line(), key = input.line(), value = input.line();
    const std::string text = input.rest().c_str();
    const std::vector<char> exact(text.c_str(), text.c_str() + text.size() + 1);
    int at[6];
    const int found = parse_file(section.c_str(), key.c_str(), exact.data(), &at[0], &at[1], &at[2],
                                 &at[3], &at[4], &at[5]);
    const fuzz::IniPlaces places = fuzz::ini_search(section, key, text);
    for (const int i : {0, 1}) {
        fuzz::same("place of the section", places.section[i], at[i]);
        fuzz::same("place of the key", places.key[i], at[2 + i]);
        fuzz::same("place of the value", places.value[i], at[4 + i]);
    }
    fuzz::same("the key is found", places.value[0] >= 0, found);
    fuzz::same("text with the value", fuzz::ini_with(text, section, key, value),
               with_profile_value(text, section, key, value));
    return 0;
}
