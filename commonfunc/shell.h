// The only door to the shell: every command of the program is run here.
#pragma once

#include <string>

/// Which output streams are flushed before a command runs, so that the program's own lines come
/// before the tool's.
enum class Flush { none, out, both };

/// Runs the command once through `/bin/sh` as `system` does: the command gets signals, descriptors
/// and environment as they are, and while it runs the program ignores SIGINT and SIGQUIT and holds
/// SIGCHLD back. Returns the wait status (that of exit code 127 where there is no /bin/sh), or -1
/// when no process could be started. A command too long for one argument of the kernel (more than
/// 131,071 bytes) is run by the same shell from a file in memory, or, where /proc is missing, from
/// a private temporary file; -1 (with a warning) when neither can be written. Handlers of the
/// program must be safe to run in the child, which shares its memory until it is the shell.
/// `meanwhile` is called while the command runs, if it could be started.
int run_shell(const std::string& command, Flush flush, void (*meanwhile)() = nullptr);

/// `run_shell` with both streams flushed, for the short commands that the program composes itself
/// (`mkdir`, `rm`, `cp`). When the command died of SIGINT or SIGQUIT, the program ends by the same
/// signal: the user wants the build stopped, not this step alone.
int run_helper(const std::string& command, void (*meanwhile)() = nullptr);

/// The name as one word of a shell command. A name made of letters, digits, `_-./+,:=@%` and
/// bytes of 128 and more stands as it is, any other is put in single quotes; a name that begins
/// with `-` gets "./" before it.
std::string shell_word(const std::string& name);

/// The command's exit status as a shell's `$?`: 0 to 255, 128 + n for a signal, 127 when no
/// shell could be started. `wait_status` is a result of `run_shell`.
int exit_status_of(int wait_status);
