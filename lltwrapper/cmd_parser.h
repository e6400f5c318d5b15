// The rebuild of the wrapped command line for the shell.
#pragma once

#include <string>

/// Rebuilds `pOriginalCmd` from argument 1 to the last: takes out and records the wrapper's own
/// options, rewrites a few compiler options, escapes paths for the shell.
void rebuild_command(int argc, char** argv);

/// `rebuild_command`, then `checkstate` with the unchanged vector.
void parser(int argc, char** argv);

/// The text with a backslash before each double quote, blank, "(", ")", "<" and ">".
std::string escape_for_shell(const std::string& text);

/// Appends `escape_for_shell` of `src` behind the text in `dst`. Writes no NUL: the caller
/// provides a buffer that is zero behind its text and large enough.
void StrReplace(const char* src, char* dst);
