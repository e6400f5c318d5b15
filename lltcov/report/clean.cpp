// Removes only what the tool set wrote: dumps whose work area is in the project, work areas, and
// LLTTEMP. Nothing is removed through a link, for it may lead out of the project. The next clean
// finishes one that was killed: work areas are first moved away as a whole, by a rename, and
// LLTTEMP, which marks the project, goes last.
#include "lltcov/report/clean.h"

#include "commonfunc/file_tree.h"
#include "commonfunc/message.h"
#include "commonfunc/path_name.h"
#include "contract/dump_file.h"
#include "contract/names.h"
#include "contract/places.h"
#include "contract/project_file.h"
#include "lltcov/common/command_line.h"
#include "lltcov/common/commands.h"
#include "lltcov/common/console.h"
#include "lltcov/common/project.h"
#include "lltcov/report/opened_dump.h"
#include "lltcov/report/project_data.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <filesystem>
#include <iterator>
#include <map>
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

/// What is removed: the runs, those of earlier builds alone, all that concerns outputs that are
/// gone, or everything.
enum class Scope { runs, old_runs, gone, all };

/// The file type bits of the path itself; 0 when there is nothing, or, after a line, when that
/// cannot be told.
mode_t type_of(const std::string& path)
{
    struct stat info = {};
    if (::lstat(path.c_str(), &info) == 0) {
        return info.st_mode & S_IFMT;
    }
    if (errno != ENOENT && errno != ENOTDIR) {
        warn("cannot look at '%s': %s; mend that and clean again", path.c_str(),
             std::strerror(errno));
    }
    return 0;
}

class Cleaner
{
public:
    Cleaner(std::string root, Mode mode, Scope scope, PathMaps maps = {})
        : root_(std::move(root)), directory_(project_directory(root_)), mode_(mode), scope_(scope),
          maps_(std::move(maps))
    {
    }

    /// Finds the work areas; false for a directory that has nothing of a project.
    bool find()
    {
        bool is_project =
            is_own_directory(root_) || type_of(places::temporary_directory(root_)) != 0;
        if (mode_ == Mode::remove && type_of(set_aside()) != 0) {
            is_project = true;
            remove(set_aside());
        }
        for (const std::string& name : names_in(root_)) {
            const std::string area = places::work_area(root_, name);
            if ((scope_ == Scope::gone || scope_ == Scope::all) && name != TEMPORARY_NAME &&
                type_of(root_ + "/" + name) == S_IFDIR && type_of(area) == S_IFDIR &&
                is_wanted_area(area)) {
                areas_.insert(area);
            }
        }
        if (scope_ == Scope::old_runs) {
            Findings ignored; // damaged records do not matter here
            for (const ModuleData& module : read_modules(root_, ignored, maps_).modules) {
                builds_[module.module.area].insert(module.buid);
            }
        }
        return is_project || !areas_.empty() || !modules_of(root_).empty();
    }

    void clean()
    {
        clean_dumps();
        clean_areas();
        // Where something is left, the next clean must know the project.
        if (scope_ == Scope::all && !has_failed()) {
            clean_temporary();
            clean_own_directory();
        }
    }

    void report() const
    {
        std::printf("%s %zu dumps", mode_ == Mode::show ? "would remove" : "removed", dumps_);
        if (!areas_.empty() || temporary_) {
            std::printf(", %zu work areas%s", areas_.size(), temporary_ ? ", LLTTEMP" : "");
        }
        std::printf(" of '%s'\n", directory_.c_str());
    }

    /// True when something stays, or could not be looked at: each of them has its line.
    bool has_failed() const { return warnings_printed() != warnings_; }

private:
    void clean_dumps()
    {
        const std::string directory = absolute_path(dump_root(root_));
        for (const std::string& name : names_in(directory)) {
            const std::string path = directory + "/" + name;
            if (type_of(path) != S_IFREG) {
                continue;
            }
            const bool is_ours = is_dump(name) ? is_wanted_dump(path)
                                               : is_of_all_builds() && is_spare_dump(name) &&
                                                     is_inside(path, directory_);
            if (is_ours && remove(path)) {
                dumps_ += is_dump(name) ? 1 : 0;
            }
        }
    }

    void clean_areas()
    {
        for (auto area = areas_.begin(); area != areas_.end();) {
            area = remove_area(*area) ? std::next(area) : areas_.erase(area);
        }
    }

    /// Removes it, and its module's directory when there is nothing else in that.
    bool remove_area(const std::string& area)
    {
        const std::string module = split_path(area + ".").directory;
        const std::size_t names = names_in(module).size();
        if (names == 0) {
            return false; // it could not be read: the next clean finds it as it is
        }
        const bool is_alone = names == 1;
        if (mode_ == Mode::remove &&
            std::rename((is_alone ? module : area).c_str(), set_aside().c_str()) == 0) {
            return remove(set_aside());
        }
        const bool is_removed = remove(area); // a mount point, for example, cannot be renamed
        if (mode_ == Mode::remove && is_alone) {
            ::rmdir(module.c_str());
        }
        return is_removed;
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

    /// All that is in the directory of a project's settings was written by the tool set.
    void clean_own_directory()
    {
        if (is_own_directory(root_) && type_of(root_) == S_IFDIR) {
            remove(root_);
        }
    }

    /// A damaged dump belongs to the project when it is in its directory.
    bool is_wanted_dump(const std::string& path) const
    {
        try {
            DumpReader reader = open_dump(path);
            const std::string named = mapped_path(maps_, std::string(reader.dump().area));
            const std::string real = absolute_path(named[0] == '/' ? named : root_ + "/" + named);
            const std::string area = real.empty() ? named : real; // a program has taken its place
            const bool is_ours =
                named[0] == '/' ? is_inside(area, root_) : is_inside(path, directory_);
            const bool is_gone = !named.empty() && (areas_.count(area) != 0 ||
                                                    type_of(places::project_file(area)) == 0);
            const auto builds = builds_.find(area);
            const bool is_old = builds != builds_.end() &&
                                builds->second.count(std::string(reader.dump().buid)) == 0;
            return is_ours && (is_of_all_builds() || (scope_ == Scope::gone ? is_gone : is_old));
        } catch (const std::exception&) {
            return is_inside(path, directory_) && is_of_all_builds();
        }
    }

    bool is_of_all_builds() const { return scope_ == Scope::runs || scope_ == Scope::all; }

    /// A work area of an archive step or a link says what was built, or which libraries were taken,
    /// or holds nothing but directories.
    bool is_wanted_area(const std::string& area) const
    {
        const std::string output = mapped_path(maps_, project_value(area, project_key::OUTPUT));
        if (!output.empty()) {
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
        return false;
    }

    /// What a work area becomes before it is removed.
    std::string set_aside() const { return root_ + "/.lltcov-clean"; }

    std::string root_;
    std::string directory_; ///< of the project
    Mode mode_;
    Scope scope_;
    PathMaps maps_; ///< of what has moved since it was built
    std::size_t dumps_ = 0;
    std::set<std::string> areas_;                         ///< work areas that are removed
    std::map<std::string, std::set<std::string>> builds_; ///< builds that count, by work area
    bool temporary_ = false;
    std::size_t warnings_ = warnings_printed(); ///< before all this
};

} // namespace

int run_clean(const Arguments& arguments)
{
    const CommandLine line(arguments, {"--old", "--gone", "--all", "--dry-run"},
                           {"--map", "--project"});
    line.refuse_operands();
    if (line.has("--old") + line.has("--gone") + line.has("--all") > 1) {
        throw UsageError("choose one of --old, --gone and --all");
    }
    const std::string root = project_root(line);
    const Scope scope = line.has("--all")    ? Scope::all
                        : line.has("--gone") ? Scope::gone
                        : line.has("--old")  ? Scope::old_runs
                                             : Scope::runs;
    Cleaner cleaner(root, line.has("--dry-run") ? Mode::show : Mode::remove, scope,
                    path_maps(line));
    if (!cleaner.find()) {
        warn(
            "'%s' is no project: it has neither LLTTEMP nor work areas, nothing is removed; name the project with --project",
            root.c_str());
        return 1;
    }
    cleaner.clean();
    cleaner.report();
    return cleaner.has_failed() ? 1 : 0;
}

bool remove_old_counts(const std::string& root)
{
    Cleaner cleaner(root, Mode::remove, Scope::old_runs);
    if (cleaner.find()) {
        cleaner.clean();
    }
    return !cleaner.has_failed();
}
