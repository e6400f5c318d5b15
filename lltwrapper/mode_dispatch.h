// The road of one command: read the project, dispatch on the mode flags, run, exit status.
#pragma once

/// Handles the calls that wrap no command: none at all, the version, the help. Returns true when
/// the call was one of them and has been answered; the exit status is then 0.
bool answer_without_command(int argc, char** argv);

/// Sets `lltdbRootpath` and `lltcovmode` from the environment.
void read_project();

/// Runs the wrapped command in the mode that `checkstate` decided; the process's exit status.
int dispatch_mode();
