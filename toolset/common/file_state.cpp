// States are compared as texts, and are the same only on the machine and file system that made
// them: a copied tree counts as a changed one.
#include "toolset/common/file_state.h"

#include "commonfunc/file_io.h"
#include "commonfunc/file_tree.h"

#include <sys/stat.h>
#include <vector>

namespace
{

std::string to_text(const struct timespec& time)
{
    return " " + std::to_string(time.tv_sec) + "." + std::to_string(time.tv_nsec);
}

void add_tree(const std::string& directory, const std::string& within,
              const std::set<std::string>& passed_over, std::string& state)
{
    for (const std::string& name : names_in(directory + within)) {
        const std::string path = within + "/" + name;
        struct stat info = {};
        if (passed_over.count(path) != 0) {
            continue;
        }
        state += path + state_of_file(directory + path);
        if (::lstat((directory + path).c_str(), &info) == 0 && S_ISDIR(info.st_mode)) {
            add_tree(directory, path, passed_over, state);
        }
    }
}

} // namespace

bool file_holds(const std::string& path, const std::string& text)
{
    std::string content;
    return read_whole_file(path, content) == Reading::done && content == text;
}

std::string state_of_file(const std::string& path)
{
    struct stat info = {};
    if (::stat(path.c_str(), &info) != 0) {
        return " -\n";
    }
    if (S_ISDIR(info.st_mode)) {
        return "/\n";
    }
    return " " + std::to_string(info.st_mode) + " " + std::to_string(info.st_size) + " " +
           std::to_string(info.st_ino) + to_text(info.st_mtim) + to_text(info.st_ctim) + "\n";
}

std::string state_of_tree(const std::string& directory, const std::set<std::string>& passed_over)
{
    std::string state;
    add_tree(directory, "", passed_over, state);
    return state;
}
