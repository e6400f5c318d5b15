// Commands run by their words, without a shell: the shell has already read them once.
#pragma once

#include <string>
#include <vector>

/// Which output of a command is seen.
enum class Output { shown, discarded };

/// Runs the command and waits. Returns its exit status as a shell's `$?`: 128 + n for signal n, 127
/// when it could not be started (a line on standard error says so).
int run(const std::vector<std::string>& words, Output output = Output::shown);

/// Prints "lltld: " and the formatted line on standard error.
void say(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// The directory of the running executable.
std::string own_directory();
