// The part of "lltcov clean" that follows each build through "lltcov run".
#pragma once

#include <string>

/// Removes the counts of earlier builds than the last one of each module of the project: no report
/// counts them. False after a message when some could not be removed.
bool remove_old_counts(const std::string& root);
