// Where the sources are that a compiler recorded: relative paths, and paths whose prefix it was
// told to replace.
#pragma once

#include "contract/record.h"

#include <string>

/// The absolute path of a source, without "." and "..", and of links where it is there. `name` is
/// what the compiler recorded, `directory` where it ran, as it recorded that.
std::string source_path(const Record& record, const std::string& directory,
                        const std::string& name);
