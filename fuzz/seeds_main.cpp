// Feeds the files of a directory to a fuzz target, each whole and cut at up to 20 places.
#include "fuzz/fuzz.h"

#include <cstdio>
#include <filesystem>
#include <map>

namespace
{

void run(const std::string& seed, std::size_t size)
{
    const std::vector<std::uint8_t> bytes(seed.data(), seed.data() + size);
    LLVMFuzzerTestOneInput(bytes.data(), size);
}

} // namespace

int main(int argc, char** argv)
{
    std::map<std::string, std::string> seeds; // by name, read before the target changes directory
    for (const auto& entry : std::filesystem::directory_iterator(argc == 2 ? argv[1] : ".")) {
        seeds[entry.path().filename()] = fuzz::read_file(entry.path());
    }
    for (const auto& [name, seed] : seeds) {
        std::fprintf(stderr, "%s\n", name.c_str());
        for (std::size_t size = 0; size < seed.size(); size += 1 + seed.size() / 20) {
            run(seed, size);
        }
        run(seed, seed.size());
    }
    return seeds.size() < 5 ? 1 : 0; // a target without seeds is a mistake
}
