// The rules by which environment variables are read, each with a name of its own.
#pragma once

#include <string>

/// True when the variable is set and its text is not empty.
bool env_is_filled(const char* name);

/// The variable's text; empty when unset.
std::string env_text(const char* name);

/// The variable's number (text that is no number is 0); 0 when unset.
int env_int(const char* name);

/// True when the variable is set, not empty, and its number is not 0.
bool env_is_nonzero(const char* name);
