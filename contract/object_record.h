// Where the records of an object are: the section of their name in an ELF file.
#pragma once

#include <string_view>

/// The content of the object's record section, empty when it has none; a view into `object`.
/// Objects of 32 and 64 bits and of both byte orders are read; what is cut or no ELF object has no
/// record.
std::string_view record_section(std::string_view object);
