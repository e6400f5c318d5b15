// A build system may start a tool with closed descriptors or with signals ignored. Neither must
// make a file of the project receive messages, nor lose the status of the wrapped command.
#include "lltwrapper/process_setup.h"

#include "commonfunc/descriptor.h"

#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <initializer_list>
#include <unistd.h>

namespace
{

void ignore_signal(int /*signal*/) {}

} // namespace

void prepare_process()
{
    int fd = 0;
    do {
        fd = ::open("/dev/null", O_RDWR);
    } while (fd >= 0 && fd <= STDERR_FILENO);
    if (fd > STDERR_FILENO) {
        ::close(fd);
    }
    // The C library's own stream drops what it holds when a signal interrupts its writing.
    if (std::FILE* const output = open_descriptor(STDOUT_FILENO, "w").release()) {
        std::setvbuf(output, nullptr, ::isatty(STDOUT_FILENO) != 0 ? _IOLBF : _IOFBF, BUFSIZ);
        stdout = output;
    }
    // With SIGCHLD ignored, the status of every command is lost.
    std::signal(SIGCHLD, SIG_DFL);
    // A handler, unlike SIG_IGN, is not passed on to the tools. Where the parent ignores the
    // signal, it stays ignored.
    for (const int signal : {SIGPIPE, SIGXFSZ}) {
        if (std::signal(signal, ignore_signal) == SIG_IGN) {
            std::signal(signal, SIG_IGN);
        }
    }
}
