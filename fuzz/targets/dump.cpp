// A dump file. One that is sound ends with its words: the number of runs, and every counter.
#include "commonfunc/text_lines.h"
#include "contract/dump_file.h"
#include "fuzz/fuzz.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    std::vector<std::uint64_t> words;
    try {
        DumpReader reader(size, [&](std::uint64_t offset, char* to, std::size_t count) {
            fuzz::holds("what is read is in the file", offset <= size && count <= size - offset);
            bytes.copy(to, count, offset);
        });
        Dump& dump = reader.dump();
        const std::string_view header(dump.header.data(), dump.header.size());
        for (const std::string_view text : {dump.module, dump.buid, dump.area, dump.test}) {
            fuzz::holds("a text is of the header", fuzz::is_inside(text, header));
        }
        words.push_back(dump.runs);
        for (DumpedSource& source : dump.sources) {
            fuzz::holds("a symbol is of the header", fuzz::is_inside(source.symbol, header));
            reader.read_counters(source);
            words.insert(words.end(), source.counters.begin(), source.counters.end());
        }
    } catch (const FormatError& error) {
        fuzz::holds("a line is named", error.line > 0);
        return 0;
    }
    if (bytes.empty()) {
        return 0;
    }
    std::string little, big;
    for (const std::uint64_t word : words) {
        for (unsigned shift = 0; shift < 64; shift += 8) {
            little += static_cast<char>(word >> shift);
            big += static_cast<char>(word >> (56 - shift));
        }
    }
    const std::string end = "\ncounts " + std::to_string(little.size()) + "\n";
    fuzz::holds("there is room for the words", bytes.size() > little.size());
    const std::string header = bytes.substr(0, bytes.size() - little.size());
    const std::size_t order = header.rfind("\norder ");
    fuzz::holds("the format and an order are named",
                header.find("lltcov 2\n") == 0 && order != std::string::npos);
    fuzz::same("words of the file", header.compare(order, 11, "\norder big\n") == 0 ? big : little,
               bytes.substr(header.size()));
    return 0;
}
