// Counters of clang, read by LLVM's tools: what they mean is in the object itself.
#pragma once

#include "lltcov/common/console.h"
#include "lltcov/report/coverage.h"
#include "lltcov/report/object_reading.h"

#include <string>

/// The objects' counters as a text that `llvm-profdata merge` takes; functions that several of them
/// have stand there several times and are added up.
std::string profile_text(const ObjectReadings& objects);

/// Reads the objects' counters, each object by itself. What cannot be read goes to the findings.
void read_clang_objects(const ObjectReadings& objects, Counting counting, Findings& findings);

/// What LLVM's tools show of these objects together, as parts of one program. It is not the sum of
/// what they show of each: a line's count is the largest of its regions, and each region's count is
/// added up before. Objects that cannot be read are left out.
Coverage read_clang_together(const ObjectReadings& objects, Counting counting, Findings& findings);
