// What is asked of the compilers' own readers of counters: an object, and how often its lines ran.
#pragma once

#include "contract/record.h"
#include "lltcov/report/coverage.h"

/// An object whose counters are to be read.
struct ObjectReading {
    const Record* record = nullptr;
    Counters counters;     ///< `record->array_bytes` of them, in this machine's byte order
    Coverage coverage;     ///< filled by the reader; stays empty where that fails
    std::string file = {}; ///< clang: a copy of the object, which says what the counters mean
};

/// Objects to read, all of one compiler.
using ObjectReadings = std::vector<ObjectReading*>;
