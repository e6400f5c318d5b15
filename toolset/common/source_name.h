// Which files a compiler takes for sources that can be instrumented.
#pragma once

#include <string>

/// The text after the last '.' of the file's name; empty without one.
std::string suffix_of(const std::string& path);

/// True for the suffixes of C and C++, also preprocessed.
bool names_source(const std::string& path);
