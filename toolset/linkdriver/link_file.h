// The files of a link: what they are, and where a linker finds them.
#pragma once

#include <string>
#include <vector>

/// What a file is, by its first bytes.
enum class FileKind {
    missing, ///< also what is no regular file
    object,  ///< relocatable object or bitcode
    archive, ///< static library, also a thin one
    image,   ///< program or shared library
    text,    ///< anything else: source, linker script
};

/// The kind of the file, which is opened for that.
FileKind kind_of(const std::string& path);

/// Reads a file of the link whole; when that fails, a notice says so, and the text is empty.
bool read_input(const std::string& path, std::string& content);

/// The file that "-lNAME" means: in the first of the directories that has one, libNAME.so unless
/// the link is static, else libNAME.a; for ":FILE" that file. Empty when it is in none of them.
std::string find_library(const std::string& name, bool is_static,
                         const std::vector<std::string>& directories);

/// The files and "-l" options that a linker script brings in by its INPUT and GROUP commands.
std::vector<std::string> inputs_of_script(const std::string& text);
