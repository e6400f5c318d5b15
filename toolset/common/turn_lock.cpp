// One file for all turns, each of which locks one byte of it: no file is left for each turn, and a
// lock ends with its process.
#include "toolset/common/turn_lock.h"

#include <cerrno>
#include <fcntl.h>
#include <limits>
#include <unistd.h>

TurnLock::TurnLock(const std::string& area, const std::string& turn)
    : file_(::open((area + "/turns.lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666))
{
    struct flock byte = {};
    byte.l_type = F_WRLCK;
    byte.l_start = static_cast<off_t>(std::hash<std::string>()(turn)) &
                   (std::numeric_limits<off_t>::max() / 2);
    byte.l_len = 1;
    while (::fcntl(file_, F_OFD_SETLKW, &byte) != 0 && errno == EINTR) {
    }
}

TurnLock::~TurnLock()
{
    ::close(file_);
}
