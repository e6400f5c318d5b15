// Other programs that do a part of the work, without a shell, and a private directory for what they
// read and write.
#pragma once

#include <cstddef>
#include <string>
#include <sys/types.h>
#include <vector>

/// A directory that only its owner can enter; it is removed, with all it holds, in the end. While
/// there is one, SIGINT, SIGTERM and SIGHUP end the process only after that: the functions below
/// throw, and the signal is passed on by the destructor.
class TemporaryDirectory
{
public:
    /// Makes it below "TMPDIR", else /tmp; throws `std::runtime_error` when that fails.
    TemporaryDirectory();
    ~TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    /// The directory's absolute path.
    const std::string& path() const { return path_; }

    /// Writes a file of this name; throws `std::runtime_error` when that fails.
    void write(const std::string& name, const std::string& bytes) const;

    /// The content of a file of this name; empty when there is none.
    std::string read(const std::string& name) const;

private:
    std::string path_;
};

/// Starts a program, found through PATH, in the directory. Its output goes to NAME.out there, what
/// it says on standard error, in English, to NAME.err; its input is empty. 0 when it cannot be
/// started. Throws `std::runtime_error` when a signal wants the process to end.
pid_t start_program(const std::vector<std::string>& words, const TemporaryDirectory& directory,
                    const std::string& name);

/// Waits for a process that `start_program` gave; its exit status as a shell's `$?`, or 127 for a
/// program that could not be started. Throws as `start_program` does.
int wait_for_program(pid_t program);

/// How many programs the machine runs side by side.
std::size_t number_of_processors();
