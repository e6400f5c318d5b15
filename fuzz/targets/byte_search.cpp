// The search in objects: a pattern on a line, how many bytes fewer are looked at, and the bytes.
#include "fuzz/fuzz.h"
#include "fuzz/models.h"
#include "lltld/object_scan.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::Input input(data, size);
    const std::string pattern = input.line();
    const unsigned fewer = input.number(256);
    const std::string text = input.rest();
    const std::vector<char> exact(text.c_str(), text.c_str() + text.size() + 1);
    const std::size_t limit = text.size() - std::min<std::size_t>(fewer, text.size());
    const char* const match = QMRstrstr(exact.data(), pattern.c_str(), limit);
    const std::size_t expected = fuzz::quirky_find(text, pattern, 0, limit);
    fuzz::same("place of the pattern", static_cast<long long>(expected),
               match != nullptr ? match - exact.data() : -1);
    return 0;
}
