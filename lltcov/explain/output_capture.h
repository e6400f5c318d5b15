// What operations print, kept from the terminal.
#pragma once

#include <cstdio>
#include <string>

/// From construction on, what is written to the descriptor goes into a file without a name.
class OutputCapture
{
public:
    /// `fd` is 1 or 2. Throws `std::runtime_error` when no such file can be made.
    explicit OutputCapture(int fd);
    ~OutputCapture();
    OutputCapture(const OutputCapture&) = delete;
    OutputCapture& operator=(const OutputCapture&) = delete;

    /// Ends the capture; what was written.
    std::string finish();

private:
    void restore();

    int fd_;
    int saved_ = -1; ///< duplicate of the descriptor; -1 once restored
    std::FILE* file_;
};
