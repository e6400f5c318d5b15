// The static libraries of a link that have a stub, as they were when they were linked. Libraries of
// one stem share a work area, which describes the one built last; only this list identifies the
// runs of the others. The link driver writes it into its module's work area, lltcov reads it:
//
//     lltlibraries 1                     format and its version
//     library /p/debug/libdemo.a         a library; the lines after it are about it
//     area /p/libdemo/codemeasure        work area
//     buid Q1121070512                   build id of its stub
//     symbol demo_c_1a2b                 a coverage symbol that the stub registers
//
// A reader skips lines whose first word it does not know.
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

/// The list as text.
std::string to_text(const std::vector<LinkedLibrary>& libraries);

/// Reads a list's text; throws `FormatError` for one that is not sound.
std::vector<LinkedLibrary> read_linked_libraries(std::string_view text);
