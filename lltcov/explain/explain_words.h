// What a shell makes of a command, without running anything.
#pragma once

#include <string>
#include <vector>

/// One word as the shell hands it on: quotes removed, nothing expanded. An operator is a word of
/// its own.
struct ShellWord {
    std::string text;
    std::string live = {}; ///< the characters that the shell acts upon, each once
};

/// The words of a command.
struct ShellWords {
    std::vector<ShellWord> words;
    char open = '\0'; ///< the quote or bracket that is never closed; the shell refuses the command
};

/// Splits the command by the shell's grammar (POSIX, Shell Command Language 2.2 and 2.3): blanks,
/// backslashes, quotes, operators, comments. Expansions stay as they stand, in one word.
ShellWords split_for_shell(const std::string& command);

/// The text in square brackets, so that blanks at its ends show; control characters as \t, \n,
/// \xNN.
std::string bracketed(const std::string& text);

/// The text with its control characters as \t, \n, \xNN, so that a terminal shows what is there.
std::string visible(const std::string& text);
