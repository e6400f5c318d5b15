// The static libraries that a link took, as the link driver lists them; its FORMATS.md describes
// the file.
#pragma once

#include <string>
#include <string_view>
#include <vector>

/// A static library as it was when it was linked.
struct LinkedLibrary {
    std::string path;                 ///< absolute
    std::string area;                 ///< work area of its module
    std::string buid;                 ///< build id of its stub
    std::vector<std::string> symbols; ///< coverage symbols that it registers
};

/// Reads a list's text; throws `FormatError` for one that is not sound.
std::vector<LinkedLibrary> read_linked_libraries(std::string_view text);
