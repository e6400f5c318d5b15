// Counters of clang, read by LLVM's tools.
#pragma once

#include "lltcov/console.h"
#include "lltcov/object_reading.h"

/// Reads the objects' counters. What cannot be read goes to the findings.
void read_clang_objects(const ObjectReadings& objects, Counting counting, Findings& findings);
