// Files and directories. Creation and clearing run the shell commands that users see in their
// build logs; names are quoted for the shell, and a command is built whole, never cut: a cut
// "rm -rf" would name a parent directory.
#include "commonfunc/file_ops.h"

#include "commonfunc/file_io.h"
#include "commonfunc/file_tree.h"
#include "commonfunc/message.h"
#include "commonfunc/shell.h"
#include "commonfunc/text.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <libgen.h>
#include <string>
#include <sys/auxv.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

/// Room that a caller of `QMRGetCurrProcName` provides, in bytes.
constexpr std::size_t PROC_NAME_SIZE = 512;

/// Prints the command that clears the directory, and gives it.
std::string shown_clearing_of(const std::string& path)
{
    std::string command = "rm -rf " + shell_word(path) + "/*";
    std::printf("rm cmd:: %s, DeleteAllFilesInDirectory\n", command.c_str());
    return command;
}

} // namespace

int QMRFileExists(const char* path)
{
    return ::access(path, F_OK) == 0 ? 1 : 0;
}

int QMRPathIsDirectory(const char* path)
{
    struct stat info = {};
    if (::stat(path, &info) == 0) {
        return S_ISDIR(info.st_mode) ? 1 : 0;
    }
    if (!means_absent(errno)) {
        warn(
            "cannot look at '%s': %s; it is taken for no directory, mend that and run the step again",
            path, std::strerror(errno));
    }
    return 0;
}

int QMRCreateDirectory(const char* path)
{
    // Kept: whatever exists counts as the directory.
    if (QMRFileExists(path) == 0 && run_helper("mkdir -p " + shell_word(path)) != 0) {
        std::printf("Create Directory'%s' failed!\n", path);
        return 0;
    }
    return 1;
}

int DeleteAllFilesInDirectory(const char* path)
{
    if (*path == '\0') {
        warn(
            "will not clear a directory without a name: that would be the root directory; check 'qmr_current_prj_path'");
        return 0;
    }
    return run_helper(shown_clearing_of(path)) == -1 ? 0 : 1;
}

void clear_directory_by_itself(const std::string& path)
{
    shown_clearing_of(path);
    flush_output(); // warnings after it, as those of the command would be
    remove_entries(path, "");
}

int QMRGetCurrProcName(char* out)
{
    char link[32];
    format_bounded(link, "/proc/%d/exe", static_cast<int>(::getpid()));
    const ssize_t length = ::readlink(link, out, PROC_NAME_SIZE);
    if (length < 0) {
        std::perror("readlink failed!\n");
        return 1;
    }
    // Kept: the first '(' of the whole path counts, so a directory named "x (1)" cuts it there.
    auto* bracket = static_cast<char*>(std::memchr(out, '(', static_cast<std::size_t>(length)));
    if (bracket != nullptr && bracket != out) {
        bracket[-1] = '\0';
    }
    return 1;
}

std::string cut_program_directory(std::size_t path_length)
{
    char program[PROC_NAME_SIZE + 1] = {};
    GetCurrProcName(program);
    program[std::min(path_length, PROC_NAME_SIZE)] = '\0';
    return ::dirname(program);
}

std::string program_directory()
{
    char program[PATH_MAX] = {};
    const ssize_t length = ::readlink("/proc/self/exe", program, sizeof program - 1);
    if (length < 0) {
        // NOLINTNEXTLINE(performance-no-int-to-ptr): that is how the kernel hands it over
        const auto* const started = reinterpret_cast<const char*>(::getauxval(AT_EXECFN));
        return started != nullptr && ::realpath(started, program) != nullptr ? ::dirname(program)
                                                                             : ".";
    }
    return ::dirname(program); // the kernel's " (deleted)" comes after the name
}

int GetCurrProcName(char* out)
{
    return QMRGetCurrProcName(out);
}
