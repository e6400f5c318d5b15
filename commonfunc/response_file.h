// Response files: words of a command in a file that the command names as @FILE.
#pragma once

#include <string>
#include <vector>

/// The arguments from index 1 on, each "@FILE" that names a readable file followed by the words of
/// that file, as GNU ar(1) reads them: separated by white space, with quotes and backslashes.
std::vector<std::string> with_response_files(int argc, char** argv);

/// The words of a response file's text.
std::vector<std::string> words_of(const std::string& text);
