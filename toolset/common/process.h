// Programs run by their words: the shell has read them once already.
#pragma once

#include <string>
#include <vector>

using Words = std::vector<std::string>;

/// How a program is run. Descriptors that are not named are inherited.
struct Streams {
    const std::string* input = nullptr; ///< text for its standard input
    std::string* output = nullptr;      ///< receives its standard output
    std::string* errors = nullptr;      ///< receives its standard error
    Words environment = {};             ///< changes to it, as of `ChangedEnvironment`
};

/// Runs the program found through PATH and waits; its status as a shell's `$?`. 127, with the
/// reason on its standard error, when it cannot be started.
int run_program(const Words& words, const Streams& streams = {});

/// Becomes the program; returns 127 with a message when that is not possible.
int become_program(const Words& words);

/// A new file without a name that holds the text, at its beginning; -1 on failure.
int anonymous_file(const std::string& text);

/// Everything in the file from its beginning.
std::string content_of(int descriptor);

/// The name that stands before everything that the program says itself; each program defines it.
extern const char* const program_name;

/// Prints "NAME: ", the formatted text and a line end on standard error.
void notice(const char* format, ...) __attribute__((format(printf, 1, 2)));
