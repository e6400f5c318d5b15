// The coverage symbols of an object, which is the whole input, read at once and in pieces.
#include "lltld/object_scan.h"
#include "commonfunc/message.h"
#include "contract/names.h"
#include "fuzz/fuzz.h"
#include "fuzz/models.h"
#include "lltld/inst_file_list.h"

#include <utility>

namespace
{

constexpr char PATH[] = "object.o";

constexpr std::size_t MAX_PIECE = 64;

/// Adds what is printed of a symbol, and its name where it is new.
void add(const std::string& text, const std::string& name, std::string& output, fuzz::Texts& names)
{
    output += "symbol  " + text + "  in obj-file: " + PATH + "\n";
    const std::string kept = name.substr(0, 259);
    if (std::find(names.begin(), names.end(), kept) == names.end()) {
        names.push_back(kept);
    }
}

/// Names in the order in which they are found, each once, and what is printed.
fuzz::Texts names_in(const std::string& object, std::string& output)
{
    const std::string prefix = ARRAY_PREFIX;
    fuzz::Texts names;
    for (std::size_t at = 0;
         (at = fuzz::quirky_find(object, prefix, at, object.size())) != std::string::npos;) {
        const std::string text = object.c_str() + at;
        const std::string name = text.substr(prefix.size(), text.find(' ') - prefix.size());
        add(text, name, output, names);
        at += prefix.size() + name.size();
    }
    return names;
}

/// The same wherever a piece ends; of a test loader only that it is one.
void scan_pieces(std::size_t piece, bool is_loader, const std::string& output,
                 const fuzz::Texts& names)
{
    ScannedObject object;
    fuzz::holds("the file is read in pieces", scan_object(PATH, object, piece));
    fuzz::same("it is a test loader, in pieces", is_loader, object.has_test_loader);
    std::string texts;
    fuzz::Texts found;
    for (const CoverageSymbol& symbol : object.symbols) {
        add(object.runs[symbol.run].substr(symbol.offset), symbol.name, texts, found);
    }
    if (!is_loader) {
        fuzz::same("texts of symbols, in pieces", output, texts);
        fuzz::same("names, in pieces", names, found);
    }
}

fuzz::Texts take_list()
{
    fuzz::Texts names;
    for (const _InstFile* node = instFileList.pHead; node != nullptr;) {
        names.emplace_back(node->szInstFileName);
        delete std::exchange(node, node->pNext);
    }
    fuzz::same("length of the list", static_cast<long long>(names.size()), instFileList.iCount);
    instFileList = _InstFileList();
    return names;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::scratch();
    const HeldMessages quiet;
    const std::string object(reinterpret_cast<const char*>(data), size);
    fuzz::write_file(PATH, object);
    int found = -1;
    fuzz::same("the file is read", size > 0,
               FindSymbolInObjFileEx(&found, PATH, TEST_LOADER_PREFIX));
    const bool is_loader =
        fuzz::quirky_find(object, TEST_LOADER_PREFIX, 0, size) != std::string::npos;
    fuzz::same("it is a test loader", size == 0 ? -1 : is_loader, found);
    fuzz::printed();
    fuzz::same("the file is searched", size > 0, FindSymbolInObjFile(PATH));
    std::string output = size == 0 ? "The file size of 'object.o' is '0'!\n" : "";
    const fuzz::Texts names = names_in(object, output);
    fuzz::same("what is printed", output, fuzz::printed());
    fuzz::same("names", names, take_list());
    for (std::size_t piece = 1; piece <= MAX_PIECE && piece <= size + 1 && size > 0; ++piece) {
        scan_pieces(piece, is_loader, output, names);
    }
    return 0;
}
