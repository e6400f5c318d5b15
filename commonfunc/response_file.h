// Response files: words of a command in a file that the command names as @FILE.
#pragma once

#include <string>
#include <vector>

/// The words with those of response files in the places of "@FILE" words, as GNU programs read
/// them: separated by white space, with quotes and backslashes. A file that cannot be read stays a
/// word.
std::vector<std::string> with_response_files(const std::vector<std::string>& words);
