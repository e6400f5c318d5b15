// The wrapper's operations print by stdio and say what is odd on standard error; both streams are
// flushed at either end, so that nothing gets into the wrong place.
#include "lltcov/explain/output_capture.h"

#include "commonfunc/message.h"

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <unistd.h>

OutputCapture::OutputCapture(int fd) : fd_(fd), file_(std::tmpfile())
{
    if (file_ == nullptr) {
        throw std::runtime_error(std::string("no temporary file: ") + std::strerror(errno));
    }
    flush_output();
    saved_ = ::dup(fd_);
    ::dup2(::fileno(file_), fd_);
}

OutputCapture::~OutputCapture()
{
    restore();
    std::fclose(file_);
}

void OutputCapture::restore()
{
    if (saved_ >= 0) {
        flush_output();
        ::dup2(saved_, fd_);
        ::close(saved_);
        saved_ = -1;
    }
}

std::string OutputCapture::finish()
{
    restore();
    std::string text;
    std::rewind(file_);
    for (int c = std::fgetc(file_); c != EOF; c = std::fgetc(file_)) {
        text += static_cast<char>(c);
    }
    return text;
}
