// Processes that do one thing, one after the other.
#pragma once

#include <string>

/// Keeps other processes that ask for the same turn waiting until the end of its scope; tools that
/// are run do not inherit it. Goes on without a lock where there can be none.
class TurnLock
{
public:
    /// `area` is the temporary area, `turn` a text that names what only one process may do at a
    /// time.
    TurnLock(const std::string& area, const std::string& turn);
    ~TurnLock();
    TurnLock(const TurnLock&) = delete;
    TurnLock& operator=(const TurnLock&) = delete;

private:
    int file_;
};
