// Archive steps of one work area, one after the other.
#pragma once

#include <string>

/// Locks the directory against other archive steps until the process ends; tools that are run do
/// not inherit the lock. Waits, saying so after 10 s, for at most 600 s; goes on without the lock
/// then, and where the directory or its file system has none.
void lock_work_area(const std::string& directory);
