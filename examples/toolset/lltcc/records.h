// What an instrumented source leaves in the project's temporary area for the archive and link
// steps.
#pragma once

#include <cstddef>
#include <string>

/// An instrumented source and its object.
struct Record {
    std::string symbol; ///< the name under which everything is filed
    std::string source; ///< absolute paths
    std::string object;
    std::string compile_command;
    int stub_mode = 1;
    std::string probe_map; ///< content of probes.txt
    std::size_t probes = 0;
};

/// A C identifier of at most 31 characters, made of the source's name and a number that is another
/// one as soon as the paths, the compile command or the code are.
std::string symbol_of(const Record& record, const std::string& assembly);

/// Writes the records, each of which appears whole or not at all. Throws std::runtime_error.
void leave_records(const std::string& area, const Record& record);
