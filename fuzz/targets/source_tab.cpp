// Tables that are read one after the other into one: a line each, of an operation, the size of the
// file and the name in its first record. "g" reads a table, "c" the merged one, "s" appends its
// record to a file; a size that is no number stands for a missing file.
#include "lltld/source_tab.h"
#include "commonfunc/Caddis_func.h"
#include "fuzz/fuzz.h"

#include <cstdlib>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

struct Model {
    std::string buffer; ///< bytes of the list, at least a whole record when there is one
    long long listsize = 0, elementcount = 0;
    std::string appended;
    int counter = 0;

    void read(const std::string& file)
    {
        if (file.empty()) {
            return; // what was read before stays
        }
        const auto size = static_cast<long long>(file.size());
        if (size > listsize) {
            buffer = std::string(std::max<std::size_t>(280, file.size()), '\0');
            listsize = size;
        }
        buffer.replace(0, file.size(), file);
        elementcount = size / 280;
    }

    void append(bool exists, const std::string& file)
    {
        if (exists) {
            read(file);
        }
        if (exists && !buffer.empty()) {
            std::string record(280, '\0');
            record[0] = static_cast<char>(counter++);
            const std::string name = buffer.substr(4, 255).c_str();
            appended += record.replace(4, name.size(), name);
        }
    }
};

std::string content(std::size_t size, const std::string& name)
{
    std::string file;
    while (file.size() < size) {
        file += "\x01\x02\x03\x04" + name + std::string(1 + file.size() % 3, '\0') +
                std::string(280, 'z');
    }
    return file.substr(0, size);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::scratch().copy(g_lxprj->szCovDictPath, 400);
    ::mkdir("db", 0777);
    const HeldMessages quiet;
    fuzz::Input input(data, size);
    Model model;
    _SOURCEFILE_TAB table;
    int counter = 0;
    char* out_text = nullptr;
    std::size_t out_size = 0;
    std::FILE* const out = ::open_memstream(&out_text, &out_size);
    for (int i = 0; i < 8 && !input.empty(); ++i) {
        const char what = input.byte();
        const std::string number = input.field(' ');
        const bool exists = !number.empty() && number[0] >= '0' && number[0] <= '9';
        const std::string file =
            content(std::strtoul(number.c_str(), nullptr, 10) % 4096, input.line());
        exists ? fuzz::write_file("db/.tab", file) : static_cast<void>(::unlink("db/.tab"));
        if (what == 's') {
            fuzz::same("a record is appended", 1,
                       SrcFileTabInfoWriteToCovTab("db/.tab", out, &table, &counter));
            model.append(exists, file);
        } else {
            fuzz::same("the table is read", exists,
                       what == 'c' ? CodeMeasure_Client_GetSourceFileTab(&table)
                                   : GetOneSourceFileTabInfo2("db/.tab", &table));
            model.read(exists ? file : "");
        }
        fuzz::same("capacity", model.listsize, table.listsize);
        fuzz::same("records", model.elementcount, table.elementcount);
        fuzz::same("bytes of the records", model.buffer,
                   std::string(reinterpret_cast<const char*>(table.objlist), model.buffer.size()));
    }
    std::fclose(out);
    fuzz::same("counter", model.counter, counter);
    fuzz::same("appended records", model.appended, std::string(out_text, out_size));
    std::free(out_text);
    release_table(table);
    return 0;
}
