#include "all.h"
#include <map>
#include <stdexcept>
#include <string>
#include <vector>
int area_of_larger(int x);
namespace
{
struct Guard {
    int& count;
    ~Guard() { count++; }
};
int parse(const std::string& text, int& guards)
{
    Guard guard{guards};
    if (text.empty())
        throw std::invalid_argument("empty");
    int value = 0;
    for (char c : text) {
        if (c < '0' || c > '9')
            throw std::runtime_error("no digit");
        value = value * 10 + (c - '0');
    }
    return value;
}
} // namespace
int main()
{
    std::map<std::string, int> found;
    int guards = 0, failures = 0;
    for (const char* text : {"12", "", "7x", "9"}) {
        try {
            found[text] = parse(text, guards);
        } catch (const std::invalid_argument&) {
            failures += 1;
        } catch (const std::exception&) {
            failures += 10;
        }
    }
    auto sum = [&found](int start) {
        for (const auto& entry : found)
            start += entry.second;
        return start;
    };
    bool right = larger(1, 2) == 2 && larger(2.5, 1.5) == 2.5 && larger<long>(3, 4) == 4 &&
                 area_of_larger(1) == 6;
    return right && guards == 4 && failures == 11 && sum(0) == 21 && length_of("a") == 1 ? 0 : 1;
}
