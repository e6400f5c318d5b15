// Descriptors and streams on them: what a signal interrupts goes on.
#pragma once

#include <cerrno>
#include <cstdio>
#include <memory>
#include <string>
#include <sys/types.h>

/// An open file that is closed at the end of its scope; may be null.
using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

/// Opens the file as fopen(3) does, not to be inherited by tools (`mode` ends in "e"); null on
/// failure, and for a FIFO, which would block. Reads and writes that a signal interrupts go on.
File open_file(const std::string& path, const char* mode);

/// The same on a descriptor, which is closed with it; null when memory ran out.
File open_descriptor(int fd, const char* mode);

/// Result of a system call, made again while a signal interrupts it.
template <class Call> auto uninterrupted(Call call)
{
    auto result = call();
    while (result == -1 && errno == EINTR) {
        result = call();
    }
    return result;
}

/// Writes the whole text to the descriptor; false on an error, with `errno` set.
bool write_all(int fd, const char* text, std::size_t size);

/// The file mode creation mask of the process.
mode_t process_umask();
