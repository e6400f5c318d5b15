// A file is read in pieces, however large it is, and only what is found stays in memory.
#include "lltld/object_scan.h"

#include "commonfunc/file_io.h"
#include "commonfunc/message.h"
#include "contract/names.h"
#include "lltld/inst_file_list.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace
{

/// The coverage symbols of an object whose bytes come in pieces.
class SymbolCollector
{
public:
    explicit SymbolCollector(ScannedObject& object) : object_(object) {}

    void take(const char* piece, std::size_t size);

private:
    const char* take_name(const char* at, const char* end);
    const char* take_rest(const char* at, const char* end);
    void begin_symbol();

    ScannedObject& object_;
    PatternSearch search_{ARRAY_PREFIX};
    bool in_run_ = false;  ///< after a symbol and before the next NUL
    bool in_name_ = false; ///< in the name of the run's last symbol
    const char* run_end_ =
        nullptr; ///< where the run ends in this piece; null until it is looked for
};

/// The prefix has been found; what it begins may be in a run already.
void SymbolCollector::begin_symbol()
{
    const std::size_t length = std::strlen(ARRAY_PREFIX);
    if (!in_run_) {
        object_.runs.emplace_back(ARRAY_PREFIX);
    }
    in_run_ = in_name_ = true;
    object_.symbols.push_back({object_.runs.size() - 1, object_.runs.back().size() - length, {}});
}

/// Takes bytes of a name; the byte after them.
const char* SymbolCollector::take_name(const char* at, const char* end)
{
    const char* const stop = std::find_if(at, end, [](char c) { return c == ' ' || c == '\0'; });
    object_.symbols.back().name.append(at, stop);
    object_.runs.back().append(at, stop);
    // The blank or NUL begins no match and is looked at next.
    in_name_ = stop == end;
    return stop;
}

/// Takes bytes of a run after a name, up to its NUL or the next symbol in it.
const char* SymbolCollector::take_rest(const char* at, const char* end)
{
    run_end_ = run_end_ != nullptr ? run_end_ : std::find(at, end, '\0');
    const char* const next = search_.find(at, run_end_);
    object_.runs.back().append(at, next != nullptr ? next : run_end_);
    if (next != nullptr) {
        begin_symbol();
        return next;
    }
    const char* const stop = run_end_;
    if (stop != end) {
        search_ = PatternSearch(ARRAY_PREFIX); // a match that has begun ends here, too
        in_run_ = false;
        run_end_ = nullptr;
    }
    return stop;
}

void SymbolCollector::take(const char* piece, std::size_t size)
{
    const char* const end = piece + size;
    run_end_ = nullptr;
    for (const char* at = piece; at != end;) {
        if (in_name_) {
            at = take_name(at, end);
        } else if (in_run_) {
            at = take_rest(at, end);
        } else if (const char* const name = search_.find(at, end)) {
            begin_symbol();
            at = name;
        } else {
            return;
        }
    }
}

/// Reports a file that exists and was not read. A directory is no member.
void warn_if_not_read(const std::string& path, Reading reading)
{
    const int error = errno;
    const bool is_silent = reading == Reading::done || reading == Reading::empty ||
                           (reading == Reading::missing && means_absent(error)) ||
                           (reading == Reading::failed && error == EISDIR);
    if (!is_silent) {
        warn(
            "'%s' is not inspected: %s; if it is instrumented, its counters will be undefined: mend that and archive again",
            path.c_str(), why_not_read());
    }
}

} // namespace

const char* PatternSearch::find(const char* at, const char* end)
{
    while (at < end) {
        if (matched_ == 0) {
            at = static_cast<const char*>(
                std::memchr(at, *pattern_, static_cast<std::size_t>(end - at)));
            if (at == nullptr) {
                return nullptr;
            }
        }
        // Kept: a mismatching byte is used up, although it may begin a match itself.
        matched_ = *at == pattern_[matched_] ? matched_ + 1 : 0;
        ++at;
        if (pattern_[matched_] == '\0') {
            matched_ = 0;
            return at;
        }
    }
    return nullptr;
}

const char* QMRstrstr(const char* data, const char* pattern, unsigned long len)
{
    if (data == nullptr || len == 0) {
        return nullptr;
    }
    if (*pattern == '\0') {
        return data;
    }
    PatternSearch search(pattern);
    const char* at = data + len;
    const char* end = search.find(data, at);
    for (; end == nullptr && search.is_begun(); ++at) {
        end = search.find(at, at + 1);
    }
    return end != nullptr ? end - std::strlen(pattern) : nullptr;
}

int FindSymbolInObjFileEx(int* found, const char* path, const char* pattern)
{
    if (found == nullptr || path == nullptr) {
        return 0;
    }
    PatternSearch search(pattern);
    bool is_found = *pattern == '\0';
    const auto take = [&](const char* piece, std::size_t size) {
        is_found = is_found || search.find(piece, piece + size) != nullptr;
        return !is_found;
    };
    const Reading reading = read_in_pieces(path, take);
    warn_if_not_read(path, reading);
    if (reading == Reading::missing) {
        std::printf("File Path '%s' doesn't exist!\n", path);
    }
    if (reading != Reading::done) {
        return 0;
    }
    *found = is_found ? 1 : 0;
    return 1;
}

int FindSymbolInObjFile(const char* path)
{
    if (path == nullptr) {
        return 0;
    }
    ScannedObject object;
    object.path = path;
    SymbolCollector collector(object);
    const Reading reading = read_in_pieces(path, [&](const char* piece, std::size_t size) {
        collector.take(piece, size);
        return true;
    });
    warn_if_not_read(path, reading);
    switch (reading) {
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
    InstNameRecorder names;
    return register_symbols(object, names);
}

bool scan_object(const std::string& path, ScannedObject& object, std::size_t piece_size)
{
    object = ScannedObject();
    object.path = path;
    SymbolCollector collector(object);
    PatternSearch loader(TEST_LOADER_PREFIX);
    const auto take = [&](const char* piece, std::size_t size) {
        object.has_test_loader = loader.find(piece, piece + size) != nullptr;
        collector.take(piece, size);
        return !object.has_test_loader;
    };
    const Reading reading = read_in_pieces(path, take, piece_size);
    warn_if_not_read(path, reading);
    if (object.has_test_loader || reading != Reading::done) {
        object.symbols.clear();
        object.runs.clear();
    }
    return reading == Reading::done;
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
