// The drivers as the shell finds them: on PATH, and last those that are installed with the wrapper.
#pragma once

#include <string>

/// Appends the directory of the installed drivers to "PATH", where there is one and it is not there
/// yet: drivers of the user's own choice come first. An unset "PATH" stays, for the shell has a
/// default of its own.
void put_drivers_on_path();

/// Tells that the driver of a command that ended with `status` is not there, when that is so; the
/// shell says only which word it did not find.
void warn_of_missing_driver(const std::string& command, int status);
