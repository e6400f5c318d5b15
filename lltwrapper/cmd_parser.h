// The rebuild of the wrapped command line for the shell.
#pragma once

#include <string>
#include <vector>

/// Rebuilds `pOriginalCmd` from the arguments of the wrapper: takes out and records its own
/// options, rewrites a few compiler options, escapes paths for the shell.
void rebuild_command(const std::vector<std::string>& arguments);

/// True for an option of the wrapper's own, which is taken out together with its value.
bool is_own_option(const std::string& argument);

/// `rebuild_command` with argument 1 to the last, then `checkstate` with the unchanged vector.
void parser(int argc, char** argv);

/// The text with a backslash before each double quote, blank, "(", ")", "<" and ">".
std::string escape_for_shell(const std::string& text);

/// Appends `escape_for_shell` of `src` after the text in `dst`. Writes no NUL: the caller
/// provides a buffer that is zero after its text and large enough.
void StrReplace(const char* src, char* dst);
