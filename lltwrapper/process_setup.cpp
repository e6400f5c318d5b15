// A build system may start a tool with closed descriptors or with signals ignored. Neither must
// make a file of the project receive messages, nor lose the status of the wrapped command.
#include "lltwrapper/process_setup.h"

#include <csignal>
#include <fcntl.h>
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
    // An ignored SIGCHLD makes `system` lose every status.
    std::signal(SIGCHLD, SIG_DFL);
    // A handler, unlike SIG_IGN, is not passed on to the tools. Where the parent ignores SIGPIPE,
    // it stays ignored.
    if (std::signal(SIGPIPE, ignore_signal) == SIG_IGN) {
        std::signal(SIGPIPE, SIG_IGN);
    }
}
