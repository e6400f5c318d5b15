// What an instrumented source leaves in the project's temporary area for the archive and link
// steps, made from the record in its object.
#pragma once

#include "contract/record.h"

#include <string>
#include <string_view>
#include <vector>

/// A C identifier of at most 31 characters: the source's name, cut to 14, and a number that
/// changes with any of the texts.
std::string symbol_of(const std::string& source, const std::vector<std::string>& texts);

/// The records in the object's section; none when it has no section, or one that is damaged.
std::vector<Record> records_of(std::string_view object);

/// Whether the source is known to be what was compiled; after a restored record it is compared with
/// the time of the object.
enum class SourceState { as_compiled, unknown };

/// Writes the files of a record with counters into the temporary area (LLTTEMP/codemeasure), each
/// of which appears whole or not at all; `object` is the content of the object. Throws
/// `std::runtime_error`.
void leave_records(const std::string& area, const Record& record, const std::string& object,
                   SourceState state);
