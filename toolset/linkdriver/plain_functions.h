// What takes the runtime's place in a link without it.
#pragma once

#include "toolset/linkdriver/link_command.h"

#include <string>

/// C and C++ text that defines the runtime's functions, which do nothing here. The functions that
/// the compiler puts in place of fork and the exec family call the real ones; they are defined
/// only where an input of the link refers to them, for not every C library has those.
std::string plain_functions(const LinkCommand& link);
