// The layout of ELF files, see elf(5): file header, section headers, section names.
#include "contract/object_record.h"

#include "contract/record.h"

#include <cstddef>
#include <cstdint>
#include <elf.h>

namespace
{

/// Numbers of an ELF file of either class and byte order. Out of its bounds everything is 0.
class Elf
{
public:
    explicit Elf(std::string_view file) : file_(file)
    {
        is_elf_ = file.size() > EI_NIDENT && file.substr(0, SELFMAG) == ELFMAG;
        is_64_ = is_elf_ && file[EI_CLASS] == ELFCLASS64;
        is_big_ = is_elf_ && file[EI_DATA] == ELFDATA2MSB;
    }

    bool is_elf() const { return is_elf_; }
    bool is_64() const { return is_64_; }

    std::uint64_t number(std::uint64_t at, unsigned size) const
    {
        std::uint64_t value = 0;
        for (unsigned i = 0; i < size && at < file_.size() && size <= file_.size() - at; ++i) {
            const unsigned shift = 8 * (is_big_ ? size - 1 - i : i);
            value |= std::uint64_t{static_cast<unsigned char>(file_[at + i])} << shift;
        }
        return value;
    }

    /// A number of the machine's word, at one of two places by class.
    std::uint64_t word(std::uint64_t at_32, std::uint64_t at_64) const
    {
        return is_64_ ? number(at_64, 8) : number(at_32, 4);
    }

    std::string_view bytes(std::uint64_t at, std::uint64_t size) const
    {
        return at <= file_.size() && size <= file_.size() - at ? file_.substr(at, size)
                                                               : std::string_view();
    }

private:
    std::string_view file_;
    bool is_elf_ = false;
    bool is_64_ = false;
    bool is_big_ = false;
};

/// A section header of the file.
struct Section {
    std::uint64_t name = 0;
    std::string_view content;
};

Section section_at(const Elf& elf, std::uint64_t at)
{
    Section section;
    section.name = elf.number(at, 4);
    if (elf.number(at + 4, 4) != SHT_NOBITS) {
        section.content = elf.bytes(
            elf.word(at + offsetof(Elf32_Shdr, sh_offset), at + offsetof(Elf64_Shdr, sh_offset)),
            elf.word(at + offsetof(Elf32_Shdr, sh_size), at + offsetof(Elf64_Shdr, sh_size)));
    }
    return section;
}

} // namespace

std::string_view record_section(std::string_view object)
{
    const Elf elf(object);
    if (!elf.is_elf()) {
        return {};
    }
    const bool wide = elf.is_64();
    const std::uint64_t headers =
        elf.word(offsetof(Elf32_Ehdr, e_shoff), offsetof(Elf64_Ehdr, e_shoff));
    const std::uint64_t size = wide ? sizeof(Elf64_Shdr) : sizeof(Elf32_Shdr);
    std::uint64_t count =
        elf.number(wide ? offsetof(Elf64_Ehdr, e_shnum) : offsetof(Elf32_Ehdr, e_shnum), 2);
    std::uint64_t names =
        elf.number(wide ? offsetof(Elf64_Ehdr, e_shstrndx) : offsetof(Elf32_Ehdr, e_shstrndx), 2);
    // Numbers that do not fit the file header stand in the first section header.
    if (count == 0) {
        count = elf.word(headers + offsetof(Elf32_Shdr, sh_size),
                         headers + offsetof(Elf64_Shdr, sh_size));
    }
    if (names == SHN_XINDEX) {
        names = elf.number(
            headers + (wide ? offsetof(Elf64_Shdr, sh_link) : offsetof(Elf32_Shdr, sh_link)), 4);
    }
    const std::string_view texts = section_at(elf, headers + names * size).content;
    for (std::uint64_t i = 1; i < count && headers + i * size < object.size(); ++i) {
        const Section section = section_at(elf, headers + i * size);
        const std::string_view name =
            texts.substr(section.name < texts.size() ? section.name : texts.size());
        if (name.substr(0, name.find('\0')) == RECORD_SECTION) {
            return section.content;
        }
    }
    return {};
}
