// Removes only what the tool set wrote: dumps whose work area is in the project, and with --all the
// work areas and LLTTEMP. Nothing is removed through a link, for it may lead out of the project.
#include "lltcov/commands.h"

#include "commonfunc/Caddis_func.h"
#include "commonfunc/file_tree.h"
#include "lltcov/dump_file.h"
#include "lltcov/project.h"
#include "lltcov/text_lines.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

enum class Mode { remove, show };

/// The file type bits of the path itself; 0 when there is nothing.
mode_t type_of(const std::string& path)
{
    struct stat info = {};
    return ::lstat(path.c_str(), &info) == 0 ? info.st_mode & S_IFMT : 0;
}

class Cleaner
{
public:
    Cleaner(std::string root, Mode mode) : root_(std::move(root)), mode_(mode) {}

    void clean_dumps()
    {
        const std::string directory = absolute_path(dump_root(root_));
        for (const std::string& name : names_in(directory)) {
            const std::string path = directory + "/" + name;
            const bool is_ours = is_dump(name) ? is_of_project(path)
                                               : is_unfinished_dump(name) && is_inside(path, root_);
            if (is_ours && type_of(path) == S_IFREG && remove(path)) {
                ++dumps_;
            }
        }
    }

    void clean_areas()
    {
        for (const Module& module : modules_of(root_)) {
            if (is_own_area(module) && remove(module.area)) {
                ++areas_;
                remove_if_empty(root_ + "/" + module.name);
            }
        }
        const std::string temporary = root_ + "/LLTTEMP";
        if (type_of(temporary) == S_IFDIR) {
            temporary_ = remove(temporary);
        } else if (type_of(temporary) != 0) {
            warn("'%s' is no directory of its own and stays; remove it yourself",
                 temporary.c_str());
        }
    }

    void report() const
    {
        std::printf("%s %zu dumps", mode_ == Mode::show ? "would remove" : "removed", dumps_);
        if (areas_ > 0 || temporary_) {
            std::printf(", %zu work areas%s", areas_, temporary_ ? ", LLTTEMP" : "");
        }
        std::printf(" of '%s'\n", root_.c_str());
    }

    bool has_failed() const { return has_failed_; }

private:
    /// A damaged dump belongs to the project when it is in its folder.
    bool is_of_project(const std::string& path) const
    {
        std::string text;
        read_whole_file(path, text);
        try {
            const std::string area(read_dump(text).area);
            return area[0] == '/' ? is_inside(absolute_path(area), root_) : is_inside(path, root_);
        } catch (const FormatError&) {
            return is_inside(path, root_);
        }
    }

    /// A work area of an archive step or a link: no part of its path is a link, and its project
    /// file names what was built.
    bool is_own_area(const Module& module) const
    {
        char output[2] = {};
        return type_of(root_ + "/" + module.name) == S_IFDIR && type_of(module.area) == S_IFDIR &&
               read_profile_string("project", "sutpath", output, sizeof output, nullptr,
                                   (module.area + "/.prj").c_str()) != 0;
    }

    bool remove(const std::string& path)
    {
        if (mode_ == Mode::show) {
            std::printf("%s\n", path.c_str());
            return true;
        }
        remove_tree(path);
        if (type_of(path) == 0) {
            return true;
        }
        warn("'%s' could not be removed; check its owner and permissions", path.c_str());
        has_failed_ = true;
        return false;
    }

    void remove_if_empty(const std::string& directory) const
    {
        if (mode_ == Mode::remove) {
            ::rmdir(directory.c_str());
        }
    }

    std::string root_;
    Mode mode_;
    std::size_t dumps_ = 0;
    std::size_t areas_ = 0;
    bool temporary_ = false;
    bool has_failed_ = false;
};

} // namespace

int run_clean(const Arguments& arguments)
{
    const CommandLine line(arguments, {"--all", "--dry-run"}, {"--project"});
    line.refuse_operands();
    const std::string root = project_root(line);
    if (type_of(root + "/LLTTEMP") == 0 && modules_of(root).empty()) {
        warn("'%s' is no project: it has neither LLTTEMP nor work areas, nothing is removed; name "
             "the project with --project",
             root.c_str());
        return 1;
    }
    Cleaner cleaner(root, line.has("--dry-run") ? Mode::show : Mode::remove);
    cleaner.clean_dumps();
    if (line.has("--all")) {
        cleaner.clean_areas();
    }
    cleaner.report();
    return cleaner.has_failed() ? 1 : 0;
}
