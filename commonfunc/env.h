// The rules by which environment variables are read, each with a name of its own.
#pragma once

#include <string>
#include <vector>

/// True when the variable is set and its text is not empty.
bool env_is_filled(const char* name);

/// The variable's text; empty when unset.
std::string env_text(const char* name);

/// The variable's number (text that is no number is 0); 0 when unset.
int env_int(const char* name);

/// True when the variable is set, not empty, and its number is not 0.
bool env_is_nonzero(const char* name);

/// A changed copy of the environment, for a program that is started.
class ChangedEnvironment
{
public:
    /// Each change is "NAME=VALUE", or "NAME" to leave the variable out.
    explicit ChangedEnvironment(const std::vector<std::string>& changes);

    /// Its variables and a null pointer, as `exec` takes them; they may point into the process's
    /// own environment.
    char* const* variables() const { return variables_.data(); }

private:
    std::vector<std::string> changes_;
    std::vector<char*> variables_;
};
