// One file at a time is read whole, with one NUL after it, and freed before the next one.
#include "lltld/object_scan.h"

#include "commonfunc/file_io.h"
#include "contract/names.h"
#include "lltld/inst_file_list.h"

#include <cstdio>
#include <cstring>

namespace
{

constexpr std::size_t ARRAY_PREFIX_LENGTH = sizeof ARRAY_PREFIX - 1;

bool contains(const std::string& content, const char* pattern)
{
    return QMRstrstr(content.c_str(), pattern, content.size()) != nullptr;
}

void collect_symbols(const std::string& content, ScannedObject& object)
{
    const char* at = content.c_str();
    const char* const end = at + content.size();
    const char* run = nullptr;
    const char* run_end = nullptr;
    while ((at = QMRstrstr(at, ARRAY_PREFIX, static_cast<unsigned long>(end - at))) != nullptr) {
        if (run == nullptr || at >= run_end) {
            run = at;
            object.runs.emplace_back(run);
            run_end = run + object.runs.back().size();
        }
        const char* name = at + ARRAY_PREFIX_LENGTH;
        const std::size_t length = std::strcspn(name, " ");
        object.symbols.push_back(
            {object.runs.size() - 1, static_cast<std::size_t>(at - run), {name, length}});
        // From the end of the name on: the blank or NUL there begins no match, and after the
        // last NUL there is nothing to read.
        at = name + length;
    }
}

} // namespace

const char* QMRstrstr(const char* data, const char* pattern, unsigned long len)
{
    if (data == nullptr || len == 0) {
        return nullptr;
    }
    if (*pattern == '\0') {
        return data;
    }
    const char* const end = data + len;
    const char* attempt = data;
    while (attempt < end) {
        attempt = static_cast<const char*>(
            std::memchr(attempt, *pattern, static_cast<std::size_t>(end - attempt)));
        if (attempt == nullptr) {
            return nullptr;
        }
        std::size_t matched = 1;
        while (pattern[matched] != '\0' && attempt[matched] == pattern[matched]) {
            ++matched;
        }
        if (pattern[matched] == '\0') {
            return attempt;
        }
        // Kept: after the mismatching byte, which may have begun a match itself.
        attempt += matched + 1;
    }
    return nullptr;
}

int FindSymbolInObjFileEx(int* found, const char* path, const char* pattern)
{
    if (found == nullptr || path == nullptr) {
        return 0;
    }
    std::string content;
    const Reading reading = read_whole_file(path, content);
    if (reading == Reading::missing) {
        std::printf("File Path '%s' doesn't exist!\n", path);
    }
    if (reading != Reading::done) {
        return 0;
    }
    *found = contains(content, pattern) ? 1 : 0;
    return 1;
}

int FindSymbolInObjFile(const char* path)
{
    if (path == nullptr) {
        return 0;
    }
    std::string content;
    switch (read_whole_file(path, content)) {
    case Reading::missing:
        std::printf("File Path '%s' doesn't exist!\n", path);
        return 0;
    case Reading::not_opened:
        std::printf("Open the file '%s' failed!\n", path);
        return 0;
    case Reading::empty:
        std::printf("The file size of '%s' is '%d'!\n", path, 0);
        return 0;
    case Reading::no_memory:
        std::puts("Allocate memory failed!");
        return 0;
    case Reading::failed:
        std::printf("Read file '%s' failed!\n", path);
        return 0;
    case Reading::done:
        break;
    }
    ScannedObject object;
    object.path = path;
    collect_symbols(content, object);
    InstNameRecorder names;
    return register_symbols(object, names);
}

bool scan_object(const std::string& path, ScannedObject& object)
{
    std::string content;
    if (read_whole_file(path, content) != Reading::done) {
        return false;
    }
    object = ScannedObject();
    object.path = path;
    object.has_test_loader = contains(content, TEST_LOADER_PREFIX);
    if (!object.has_test_loader) {
        collect_symbols(content, object);
    }
    return true;
}

int register_symbols(const ScannedObject& object, InstNameRecorder& names)
{
    for (const CoverageSymbol& symbol : object.symbols) {
        std::printf("symbol  %s  in obj-file: %s\n",
                    object.runs[symbol.run].c_str() + symbol.offset, object.path.c_str());
        if (names.record(symbol.name) == 0) {
            return 0;
        }
    }
    return 1;
}
