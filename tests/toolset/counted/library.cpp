// Functions of the C++ library take in what they are called with, when the compiler optimises.
#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <vector>

struct Item {
    std::string name;
    int rank = 0;
    ~Item() { rank = -1; }
    bool operator<(const Item& other) const
    {
        return rank < other.rank || (rank == other.rank && name < other.name);
    }
};

static std::function<int(int)> adder(int by)
{
    return [=](int x) { return x > 3 ? x + by : x; };
}

static int applied(const std::vector<std::function<int(int)>>& all, int x)
{
    for (const auto& each : all) {
        x = each(x);
    }
    return x;
}

int main()
{
    std::vector<Item> items;
    for (int i = 0; i < 20; ++i) {
        items.push_back({"item" + std::to_string(i % 7), i % 5});
    }
    std::sort(items.begin(), items.end());
    const auto odd = std::count_if(items.begin(), items.end(),
                                   [](const Item& item) { return item.rank % 2 == 1; });
    auto kept = std::make_shared<Item>(items.front());
    return applied({adder(1), adder(2), [](int x) { return x * 2; }}, static_cast<int>(odd)) +
                       kept->rank ==
                   22
               ? 0
               : 1;
}
