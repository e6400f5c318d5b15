// A file of 32-bit words: magic, version, stamp, and records of tag, length and content. The stamp
// is that of the notes, which a record holds as 0.
#include "lltcov/report/gcov_files.h"

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace
{

constexpr std::uint32_t DATA_MAGIC = 0x67636461; ///< "gcda"
constexpr std::uint32_t SUMMARY_TAG = 0xa1000000;
constexpr std::uint32_t FUNCTION_TAG = 0x01000000;
constexpr std::uint32_t COUNTER_TAG = 0x01a10000; ///< of kind 0
constexpr int KIND_SHIFT = 17;
constexpr int FIRST_WITH_BYTES = 12; ///< compiler that gives lengths in bytes, not in words

class Words
{
public:
    void add(std::uint32_t word)
    {
        bytes_.append(reinterpret_cast<const char*>(&word), sizeof word);
    }

    void add_count(std::uint64_t count)
    {
        add(static_cast<std::uint32_t>(count));
        add(static_cast<std::uint32_t>(count >> 32));
    }

    std::string take() { return std::move(bytes_); }

private:
    std::string bytes_;
};

} // namespace

int compiler_major(std::uint32_t version)
{
    const auto letter = static_cast<int>(version >> 24);
    const auto digit = static_cast<int>(version >> 16 & 0xFF);
    return (letter - 'A') * 10 + digit - '0';
}

std::string data_file(const Record& record, const Counters& counters, std::uint64_t runs)
{
    Words file;
    const std::uint32_t unit = compiler_major(record.version) >= FIRST_WITH_BYTES ? 4 : 1;
    file.add(DATA_MAGIC);
    file.add(record.version);
    file.add(0);
    if (record.has_checksum) {
        file.add(0);
    }
    const auto largest = std::max_element(counters.begin(), counters.end());
    const std::uint64_t most = largest == counters.end() ? 0 : *largest;
    file.add(SUMMARY_TAG);
    file.add(2 * unit);
    file.add(static_cast<std::uint32_t>(std::min<std::uint64_t>(runs, INT32_MAX)));
    file.add(static_cast<std::uint32_t>(std::min<std::uint64_t>(most, INT32_MAX)));
    for (const RecordedFunction& function : record.functions) {
        file.add(FUNCTION_TAG);
        file.add(3 * unit);
        file.add(function.ident);
        file.add(function.lineno_checksum);
        file.add(function.cfg_checksum);
        for (const CounterRun& run : function.counters) {
            file.add(COUNTER_TAG + (run.kind << KIND_SHIFT));
            file.add(2 * run.number * unit);
            for (std::size_t i = 0; i < run.number; ++i) {
                file.add_count(counters[run.offset / 8 + i]);
            }
        }
    }
    return file.take();
}
