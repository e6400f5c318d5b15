// The files hold 32-bit words: a head, then for each record tag, length and content.
#include "tests/lltcov/gcc_program.h"

#include "tests/fixture.h"

#include <cstdlib>
#include <cstring>
#include <filesystem>

namespace
{

std::uint32_t word_at(const std::string& bytes, std::size_t at)
{
    std::uint32_t word = 0;
    std::memcpy(&word, &bytes.at(at), sizeof word);
    return word;
}

/// Takes functions and counters from the data file, after its head.
void take_functions(GccObject& object, std::size_t at)
{
    while (at + 8 <= object.data.size() && word_at(object.data, at) != 0) {
        const std::uint32_t tag = word_at(object.data, at);
        const auto length = static_cast<std::int32_t>(word_at(object.data, at + 4));
        at += 8;
        if (tag == 0x01000000 && length != 0) {
            RecordedFunction& function = object.record.functions.emplace_back();
            function.ident = word_at(object.data, at);
            function.lineno_checksum = word_at(object.data, at + 4);
            function.cfg_checksum = word_at(object.data, at + 8);
        } else if (tag >= 0x01a10000 && tag < 0x01b00000) {
            const std::size_t bytes = static_cast<std::size_t>(std::abs(length)); // < 0: zeros
            object.record.functions.back().counters.push_back(
                {(tag - 0x01a10000) >> 17, static_cast<std::uint32_t>(bytes / 8),
                 static_cast<std::uint32_t>(object.counters.size() * 8)});
            for (std::size_t i = 0; i < bytes; i += 8) {
                const std::uint64_t high = length < 0 ? 0 : word_at(object.data, at + i + 4);
                object.counters.push_back(length < 0 ? 0
                                                     : high << 32 | word_at(object.data, at + i));
            }
        }
        at += length < 0 ? 0 : static_cast<std::size_t>(length);
    }
}

} // namespace

GccObject run_gcc_program(const std::string& file, const std::string& text,
                          const std::string& words)
{
    const std::string folder = std::filesystem::current_path();
    const std::string stem = file.substr(0, file.rfind('.'));
    write_file(file, text);
    const std::string command = "g++ --coverage -O0 " + words + " -c -x " +
                                (file.back() == 'c' ? "c " : "c++ ") + file + " -o " + stem +
                                ".o && g++ --coverage " + stem + ".o -o " + stem + " && ./" + stem;
    EXPECT_EQ(std::system(command.c_str()), 0) << command;
    GccObject object;
    object.record.symbol = stem;
    object.record.source = folder + "/" + file;
    object.record.object = folder + "/" + stem + ".o";
    object.record.notes = read_file(stem + ".gcno");
    object.data = read_file(stem + ".gcda");
    object.record.version = word_at(object.data, 4);
    object.record.has_checksum = true;
    object.record.notes.replace(8, 4, 4, '\0');
    object.data.replace(8, 8, 8, '\0');
    take_functions(object, 16);
    object.record.array_bytes = static_cast<std::uint32_t>(object.counters.size() * 8);
    return object;
}
