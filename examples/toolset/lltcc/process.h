// Programs run without a shell between.
#pragma once

#include <string>
#include <vector>

using Words = std::vector<std::string>;

/// How a program is run. Descriptors that are not named are inherited.
struct Streams {
    const std::string* input = nullptr; ///< text for its standard input
    std::string* output = nullptr;      ///< receives its standard output
    std::string* errors = nullptr;      ///< receives its standard error
};

/// Runs the program found through PATH and waits; its status as a shell's `$?`.
int run_program(const Words& words, const Streams& streams = {});

/// Becomes the program; returns 127 with a message when that is not possible.
int become_program(const Words& words);

/// A new file without a name that holds the text, at its beginning; -1 on failure.
int anonymous_file(const std::string& text);

/// Everything in the file from its beginning.
std::string content_of(int descriptor);
