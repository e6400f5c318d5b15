// Texts for the inside of a C string literal in generated code.
#pragma once

#include <string>

/// The text itself.
std::string escape_for_c(const std::string& text);

/// The text as a string of a JSON object that stands in the literal.
std::string escape_for_json_in_c(const std::string& text);

/// The text as part of a `printf` format that stands in the literal.
std::string escape_for_format_in_c(const std::string& text);
