// One string goes in, one wait status comes out. `system` is given the string as it is; only a
// string that the kernel would refuse as one argument takes the way through a file.
#include "commonfunc/shell.h"

#include "commonfunc/env.h"
#include "commonfunc/file_io.h"
#include "commonfunc/message.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <unistd.h>

namespace
{

/// Linux passes at most 32 pages per argument, the NUL included (MAX_ARG_STRLEN, execve(2)).
constexpr std::size_t MAX_ARGUMENT_LENGTH = 131071;

/// Writes the command to a new private file in the directory; its path, empty on failure.
std::string write_command_file(const std::string& directory, const std::string& command)
{
    std::string path = directory + "/lltwrapper-XXXXXX";
    const int fd = ::mkstemp(&path[0]);
    if (fd < 0) {
        return "";
    }
    const bool written = write_all(fd, command.data(), command.size());
    ::close(fd);
    if (!written) {
        ::unlink(path.c_str());
    }
    return written ? path : "";
}

int run_from_file(const std::string& command)
{
    std::string path;
    if (env_is_filled("TMPDIR")) {
        path = write_command_file(env_text("TMPDIR"), command);
    }
    if (path.empty()) {
        path = write_command_file("/tmp", command);
    }
    if (path.empty()) {
        warn(
            "cannot write the command of %zu bytes to a file in /tmp: %s; make room there or set TMPDIR",
            command.size(), std::strerror(errno));
        return -1;
    }
    const int status = std::system(("exec /bin/sh " + shell_word(path)).c_str());
    ::unlink(path.c_str());
    return status;
}

bool is_plain(char c)
{
    const auto byte = static_cast<unsigned char>(c);
    return (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') ||
           (byte >= '0' && byte <= '9') || byte >= 128 ||
           (byte != 0 && std::strchr("_-./+,:=@%", byte) != nullptr);
}

} // namespace

int run_shell(const std::string& command, Flush flush)
{
    if (flush == Flush::both) {
        flush_output();
    } else if (flush == Flush::out) {
        std::fflush(stdout);
    }
    return command.size() <= MAX_ARGUMENT_LENGTH ? std::system(command.c_str())
                                                 : run_from_file(command);
}

int run_helper(const std::string& command)
{
    const int status = run_shell(command, Flush::both);
    const int code = status == -1 ? 0 : exit_status_of(status);
    for (const int signal : {SIGINT, SIGQUIT}) {
        if (code == 128 + signal) {
            std::signal(signal, SIG_DFL);
            std::raise(signal);
        }
    }
    return status;
}

std::string shell_word(const std::string& name)
{
    const std::string path = (!name.empty() && name[0] == '-' ? "./" : "") + name;
    bool plain = !path.empty();
    std::string quoted = "'";
    for (const char c : path) {
        plain = plain && is_plain(c);
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return plain ? path : quoted + "'";
}

int exit_status_of(int wait_status)
{
    if (wait_status == -1) {
        return 127;
    }
    return WIFSIGNALED(wait_status) ? 128 + WTERMSIG(wait_status) : WEXITSTATUS(wait_status);
}
