// What a link command says: its inputs, its output, and whether it links at all.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

/// One input of a link.
struct LinkInput {
    std::string path;
    std::size_t position; ///< index of the word that brings it in; -1 for none
    bool is_word;         ///< the word is the path itself, not a "-l", "-Wl," or response file
};

/// A link command, as its tool would read it.
struct LinkCommand {
    std::vector<std::string> words; ///< the command itself, the tool first
    bool is_linker = false;         ///< the tool is a linker, not a compiler
    bool links = true;              ///< false for "-c", "-E" and the like
    bool is_relocatable = false;    ///< "-r": the result is an object again
    bool has_c_library = true;      ///< the runtime needs one; false for "-nostdlib" without "-lc"
    bool leaves_side_files = false; ///< "-save-temps" and the like: files named after the output
    bool writes_dependencies = false;   ///< "-MD", "-MMD"
    bool names_dependency_file = false; ///< "-MF"
    bool names_dependent = false;       ///< "-MT", "-MQ"
    std::string output;                 ///< value of the last "-o"; "a.out" when there is none
    std::vector<LinkInput> objects;     ///< relocatable objects
    std::vector<LinkInput> archives;    ///< static libraries, those named by "-l" too
    std::vector<LinkInput> sources;     ///< C and C++ sources to be compiled on the way
    std::vector<std::size_t> link_only; ///< words that mean nothing to a compilation
};

/// Reads the command and looks at the files that it names. Response files are looked into.
LinkCommand read_link_command(std::vector<std::string> words);
