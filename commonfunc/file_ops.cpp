// Files and directories. Creation and clearing run the shell commands that users see in their
// build logs; names are quoted for the shell, and a command is built whole, never cut: a cut
// "rm -rf" would name a parent directory.
#include "commonfunc/file_ops.h"

#include "commonfunc/message.h"
#include "commonfunc/path_name.h"
#include "commonfunc/shell.h"
#include "commonfunc/text.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace
{

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

/// Room that a caller of `QMRGetCurrProcName` provides, in bytes.
constexpr std::size_t PROC_NAME_SIZE = 512;

mode_t mode_of_new_file()
{
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return 0666 & ~mask;
}

/// Writes the text and closes the file; false when either fails, with `errno` set.
bool write_and_close(File file, const std::string& text)
{
    if (!file) {
        return false;
    }
    const bool written = std::fwrite(text.data(), 1, text.size(), file.get()) == text.size();
    return std::fclose(file.release()) == 0 && written;
}

Writing write_directly(const std::string& path, const std::string& text)
{
    File file(std::fopen(path.c_str(), "we"), &std::fclose);
    if (!file) {
        return Writing::not_opened;
    }
    return write_and_close(std::move(file), text) ? Writing::done : Writing::failed;
}

Writing write_beside_and_rename(const std::string& path, const std::string& text, mode_t mode)
{
    std::string beside = path + ".XXXXXX";
    const int fd = ::mkstemp(&beside[0]);
    if (fd < 0) {
        return Writing::not_opened;
    }
    const bool done = ::fchmod(fd, mode) == 0 &&
                      write_and_close(File(::fdopen(fd, "w"), &std::fclose), text) &&
                      std::rename(beside.c_str(), path.c_str()) == 0;
    if (!done) {
        const int error = errno;
        ::unlink(beside.c_str());
        errno = error;
    }
    return done ? Writing::done : Writing::failed;
}

} // namespace

int QMRFileExists(const char* path)
{
    return ::access(path, F_OK) == 0 ? 1 : 0;
}

int QMRPathIsDirectory(const char* path)
{
    struct stat info = {};
    return ::stat(path, &info) == 0 && S_ISDIR(info.st_mode) ? 1 : 0;
}

int QMRCreateDirectory(const char* path)
{
    if (QMRFileExists(path) == 0 && run_helper("mkdir -p " + shell_word(path)) != 0) {
        std::printf("Create Directory'%s' failed!\n", path);
        return 0;
    }
    return 1;
}

int DeleteAllFilesInDirectory(const char* path)
{
    if (*path == '\0') {
        warn("will not clear a directory without a name: that would be the root directory; check "
             "'qmr_current_prj_path'");
        return 0;
    }
    const std::string command = "rm -rf " + shell_word(path) + "/*";
    std::printf("rm cmd:: %s, %s\n", command.c_str(), "DeleteAllFilesInDirectory");
    return run_helper(command) == -1 ? 0 : 1;
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

int GetCurrProcName(char* out)
{
    return QMRGetCurrProcName(out);
}

Reading read_whole_file(const std::string& path, std::string& content)
{
    content.clear();
    struct stat info = {};
    if (::stat(path.c_str(), &info) != 0) {
        return QMRFileExists(path.c_str()) != 0 ? Reading::not_opened : Reading::missing;
    }
    const File file(S_ISREG(info.st_mode) ? std::fopen(path.c_str(), "rbe") : nullptr,
                    &std::fclose);
    if (!file) {
        return Reading::not_opened;
    }
    if (info.st_size <= 0) {
        return Reading::empty;
    }
    try {
        content.resize(static_cast<std::size_t>(info.st_size));
    } catch (const std::exception&) {
        return Reading::no_memory;
    }
    std::setvbuf(file.get(), nullptr, _IONBF, 0);
    if (std::fread(&content[0], 1, content.size(), file.get()) != content.size()) {
        content.clear();
        return Reading::failed;
    }
    return Reading::done;
}

Writing replace_file(const std::string& path, const std::string& text)
{
    struct stat info = {};
    const bool exists = ::stat(path.c_str(), &info) == 0;
    Writing result = Writing::not_opened;
    if (exists && ::access(path.c_str(), W_OK) != 0) {
        result = Writing::not_opened; // a rename would get round the file's write protection
    } else if (exists && !S_ISREG(info.st_mode)) {
        result = write_directly(path, text);
    } else {
        result = write_beside_and_rename(exists ? absolute_path(path) : path, text,
                                         exists ? info.st_mode & 07777 : mode_of_new_file());
    }
    if (result != Writing::done) {
        warn("cannot write '%s': %s; its old content stays", path.c_str(), std::strerror(errno));
    }
    return result;
}
