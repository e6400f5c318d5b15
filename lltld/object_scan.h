// Object files searched, as raw bytes, for coverage symbols: the compiler driver leaves a reference
// to the array "g_QMRCovData_S" in each object, S being the coverage symbol of its source.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

class InstNameRecorder;

/// A search through data that comes in pieces. After a mismatch it goes on after the mismatching
/// byte, so a match that overlaps a partly matched prefix is not found (aab in aaab).
class PatternSearch
{
public:
    /// The pattern is not empty, and is not copied.
    explicit PatternSearch(const char* pattern) : pattern_(pattern) {}

    /// Goes on with the bytes from `at` to `end`: the byte after the match, or null. After a match
    /// the search begins anew.
    const char* find(const char* at, const char* end);

    /// True when the bytes so far end in the beginning of a match.
    bool is_begun() const { return matched_ > 0; }

private:
    const char* pattern_;
    std::size_t matched_ = 0;
};

/// Searches `data` for the NUL-terminated pattern by a `PatternSearch`; the match, or null.
/// Attempts start at offsets below `len` only; one may read beyond it, which a NUL after the data
/// makes safe. An empty pattern matches when `len` is at least 1.
const char* QMRstrstr(const char* data, const char* pattern, unsigned long len);

/// Sets `*found` to 1 or 0: whether the pattern occurs in the file. Returns 1, or 0 when the file
/// could not be read or is empty (`*found` is untouched then; a missing file is reported).
int FindSymbolInObjFileEx(int* found, const char* path, const char* pattern);

/// Registers every coverage symbol of the file in `instFileList` and prints them. Returns 1,
/// also without any symbol, or 0 after a message.
int FindSymbolInObjFile(const char* path);

/// One coverage symbol of an object: `name` is what follows the prefix up to the next blank
/// or NUL. What is printed of it runs to the next NUL and may hold further symbols, so symbols of
/// one run share its text.
struct CoverageSymbol {
    std::size_t run;    ///< which of the object's runs
    std::size_t offset; ///< where in the run the symbol begins
    std::string name;
};

/// What an archive step wants to know of one object, from one reading of it.
struct ScannedObject {
    std::string path;
    bool has_test_loader = false;        ///< it holds "ZJ_Start_"
    std::vector<std::string> runs;       ///< texts from a symbol to the next NUL
    std::vector<CoverageSymbol> symbols; ///< its coverage symbols in file order
};

/// Reads the file once, in pieces of that size. False when it is empty, is a directory, does not
/// exist, or, after a warning, when it cannot be read.
bool scan_object(const std::string& path, ScannedObject& object, std::size_t piece_size = 65536);

/// What `FindSymbolInObjFile` does with an object that has been read.
int register_symbols(const ScannedObject& object, InstNameRecorder& names);
