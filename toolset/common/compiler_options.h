// Options of compilers, as far as the drivers must know them.
#pragma once

#include <string>

/// True when the option's value is the next word.
bool takes_value(const std::string& option);

/// True for options that a stub of the same module must be compiled with too.
bool matters_to_stub(const std::string& option);

/// True for options that count, or use counts, without the tool set.
bool counts_itself(const std::string& option);
