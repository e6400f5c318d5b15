// The road of one command: read the project, dispatch on the mode flags, run, exit status.
#pragma once

#include "lltwrapper/classify.h"

#include <string>
#include <vector>

/// Handles the calls that wrap no command: none at all, the version, the help. Returns true when
/// the call was one of them and has been answered; the exit status is then 0.
bool answer_without_command(const std::vector<std::string>& arguments);

/// Sets `lltdbRootpath` and `lltcovmode` from the environment.
void read_project();

/// What a mode makes of a wait status.
enum class Status {
    raw,         ///< handed on; the parent sees its low eight bits. Kept: 512 becomes 0
    zero_or_one, ///< 0 for success, else 1
};
Status status_of(Mode mode); ///< of the command that runs in this mode

/// Runs the wrapped command in the mode that `checkstate` decided; the process's exit status.
int dispatch_mode();
