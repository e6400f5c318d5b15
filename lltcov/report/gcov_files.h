// The data file that gcov reads beside an object's notes, as a program of "gcc --coverage" would
// have written it.
#pragma once

#include "contract/record.h"
#include "lltcov/report/coverage.h"

#include <cstdint>
#include <string>

/// The compiler's major version, of the version word in its notes: 12 of "B22*".
int compiler_major(std::uint32_t version);

/// The bytes of the data file, in this machine's byte order: the summary of so many runs, and of
/// each function of the record its counters. `counters` has `record.array_bytes` of them.
std::string data_file(const Record& record, const Counters& counters, std::uint64_t runs);
