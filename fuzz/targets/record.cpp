// Records of objects: the input as records, as an object, and as what an object holds in its
// record section. What is read keeps its promises, and comes back the same when it is written.
#include "contract/record.h"
#include "commonfunc/text_lines.h"
#include "contract/object_record.h"
#include "fuzz/fuzz.h"

#include <cstring>
#include <elf.h>

namespace
{

/// An object of 64 bits, little-endian: its sections are none, the record and the names.
std::string object_with(const std::string& record)
{
    const std::string names = std::string(1, '\0') + RECORD_SECTION + '\0';
    Elf64_Ehdr file = {};
    std::memcpy(file.e_ident, ELFMAG, SELFMAG);
    file.e_ident[EI_CLASS] = ELFCLASS64;
    file.e_ident[EI_DATA] = ELFDATA2LSB;
    file.e_shoff = sizeof file + record.size() + names.size();
    file.e_shnum = 3;
    file.e_shstrndx = 2;
    Elf64_Shdr sections[3] = {};
    sections[1].sh_name = 1;
    sections[1].sh_offset = sizeof file;
    sections[1].sh_size = record.size();
    sections[2].sh_offset = sizeof file + record.size();
    sections[2].sh_size = names.size();
    return std::string(reinterpret_cast<const char*>(&file), sizeof file) + record + names +
           std::string(reinterpret_cast<const char*>(sections), sizeof sections);
}

void check(const Record& record)
{
    fuzz::holds("places are named",
                !record.symbol.empty() && !record.source.empty() && !record.object.empty());
    fuzz::holds("the array has whole counters", record.array_bytes % 8 == 0 &&
                                                    record.or_bytes % 8 == 0 &&
                                                    record.or_bytes <= record.array_bytes);
    for (const RecordedFunction& function : record.functions) {
        for (const CounterRun& run : function.counters) {
            fuzz::holds("counters are in the array",
                        run.offset % 8 == 0 &&
                            run.offset + 8ULL * run.number <= record.array_bytes);
        }
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    fuzz::holds("the section is in the object", fuzz::is_inside(record_section(bytes), bytes));
    const std::string object = object_with(bytes);
    fuzz::same("section of the object", bytes, std::string(record_section(object)));
    try {
        std::string written;
        for (const Record& record : read_records(bytes)) {
            check(record);
            written += to_bytes(record);
        }
        std::string again;
        for (const Record& record : read_records(written)) {
            again += to_bytes(record);
        }
        fuzz::same("records, written again", written, again);
    } catch (const FormatError& error) {
        fuzz::holds("a line is named", error.line > 0);
    }
    return 0;
}
