// Removes only what the tool set wrote: dumps whose work area is in the project, work areas, and
// LLTTEMP. Nothing is removed through a link, for it may lead out of the project.
#include "commonfunc/file_io.h"
#include "commonfunc/file_tree.h"
#include "commonfunc/ini_profile.h"
#include "commonfunc/message.h"
#include "commonfunc/path_name.h"
#include "commonfunc/text_lines.h"
#include "contract/dump_file.h"
#include "contract/names.h"
#include "contract/places.h"
#include "lltcov/common/command_line.h"
#include "lltcov/common/commands.h"
#include "lltcov/common/project.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <filesystem>
#include <set>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace
{

enum class Mode { remove, show };

/// What is removed: the runs, all that concerns outputs that are gone, or everything.
enum class Scope { runs, gone, all };

/// The file type bits of the path itself; 0 when there is nothing.
mode_t type_of(const std::string& path)
{
    struct stat info = {};
    return ::lstat(path.c_str(), &info) == 0 ? info.st_mode & S_IFMT : 0;
}

class Cleaner
{
public:
    Cleaner(std::string root, Mode mode, Scope scope)
        : root_(std::move(root)), folder_(project_folder(root_)), mode_(mode), scope_(scope)
    {
    }

    void clean()
    {
        if (scope_ != Scope::runs) {
            clean_areas();
        }
        clean_dumps();
        if (scope_ == Scope::all) {
            clean_temporary();
            clean_own_folder();
        }
    }

    void report() const
    {
        std::printf("%s %zu dumps", mode_ == Mode::show ? "would remove" : "removed", dumps_);
        if (!areas_.empty() || temporary_) {
            std::printf(", %zu work areas%s", areas_.size(), temporary_ ? ", LLTTEMP" : "");
        }
        std::printf(" of '%s'\n", folder_.c_str());
    }

    bool has_failed() const { return has_failed_; }

private:
    void clean_dumps()
    {
        const std::string directory = absolute_path(dump_root(root_));
        for (const std::string& name : names_in(directory)) {
            const std::string path = directory + "/" + name;
            const bool is_ours = is_dump(name) ? is_wanted_dump(path)
                                               : scope_ != Scope::gone && is_spare_dump(name) &&
                                                     is_inside(path, folder_);
            if (is_ours && type_of(path) == S_IFREG && remove(path)) {
                dumps_ += is_dump(name) ? 1 : 0;
            }
        }
    }

    void clean_areas()
    {
        for (const std::string& name : names_in(root_)) {
            const std::string area = places::work_area(root_, name);
            if (name != TEMPORARY_NAME && type_of(root_ + "/" + name) == S_IFDIR &&
                type_of(area) == S_IFDIR && is_wanted_area(area) && remove(area)) {
                areas_.insert(area);
                remove_if_empty(root_ + "/" + name);
            }
        }
    }

    void clean_temporary()
    {
        const std::string temporary = places::temporary_directory(root_);
        if (type_of(temporary) == S_IFDIR) {
            temporary_ = remove(temporary);
        } else if (type_of(temporary) != 0) {
            warn("'%s' is no directory of its own and stays; remove it yourself",
                 temporary.c_str());
        }
    }

    /// All that is in the folder of a project's settings was written by the tool set.
    void clean_own_folder()
    {
        if (is_own_folder(root_) && type_of(root_) == S_IFDIR) {
            remove(root_);
        }
    }

    /// A damaged dump belongs to the project when it is in its directory.
    bool is_wanted_dump(const std::string& path) const
    {
        std::string text;
        read_whole_file(path, text);
        try {
            const std::string named(read_dump(text).area);
            const std::string real = absolute_path(named[0] == '/' ? named : root_ + "/" + named);
            const std::string area = real.empty() ? named : real; // a program has taken its place
            const bool is_ours =
                named[0] == '/' ? is_inside(area, root_) : is_inside(path, folder_);
            const bool is_gone = !named.empty() && (areas_.count(area) != 0 ||
                                                    type_of(places::project_file(area)) == 0);
            return is_ours && (scope_ != Scope::gone || is_gone);
        } catch (const FormatError&) {
            return is_inside(path, folder_) && scope_ != Scope::gone;
        }
    }

    /// A work area of an archive step or a link says what was built, or which libraries were taken,
    /// or holds nothing but directories.
    bool is_wanted_area(const std::string& area) const
    {
        char output[PATH_MAX] = {};
        read_profile_string("project", "sutpath", output, sizeof output, nullptr,
                            places::project_file(area).c_str());
        if (output[0] != '\0') {
            return scope_ == Scope::all || type_of(output) == 0;
        }
        if (type_of(places::linked_libraries(area)) == S_IFREG) {
            return scope_ == Scope::all;
        }
        const std::filesystem::recursive_directory_iterator files(area);
        return scope_ == Scope::all && std::all_of(begin(files), end(files), [](const auto& file) {
                   return file.is_directory();
               });
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
    std::string folder_; ///< of the project
    Mode mode_;
    Scope scope_;
    std::size_t dumps_ = 0;
    std::set<std::string> areas_; ///< that were removed
    bool temporary_ = false;
    bool has_failed_ = false;
};

} // namespace

int run_clean(const Arguments& arguments)
{
    const CommandLine line(arguments, {"--gone", "--all", "--dry-run"}, {"--project"});
    line.refuse_operands();
    if (line.has("--gone") && line.has("--all")) {
        throw UsageError("choose one of --gone and --all");
    }
    const std::string root = project_root(line);
    if (!is_own_folder(root) && type_of(places::temporary_directory(root)) == 0 &&
        modules_of(root).empty()) {
        warn(
            "'%s' is no project: it has neither LLTTEMP nor work areas, nothing is removed; name the project with --project",
            root.c_str());
        return 1;
    }
    const Scope scope = line.has("--all")    ? Scope::all
                        : line.has("--gone") ? Scope::gone
                                             : Scope::runs;
    Cleaner cleaner(root, line.has("--dry-run") ? Mode::show : Mode::remove, scope);
    cleaner.clean();
    cleaner.report();
    return cleaner.has_failed() ? 1 : 0;
}
