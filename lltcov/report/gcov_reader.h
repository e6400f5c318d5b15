// Counters of gcc, read by the gcov of the compiler's version.
#pragma once

#include "lltcov/common/console.h"
#include "lltcov/report/coverage.h"
#include "lltcov/report/object_reading.h"

/// Reads the objects' counters, many objects by one gcov and on all processors. What cannot be read
/// goes to the findings.
void read_gcc_objects(const ObjectReadings& objects, Counting counting, Findings& findings);
