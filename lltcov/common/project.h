// The project that is looked at: where it is, and the work areas of its modules.
#pragma once

#include "lltcov/common/command_line.h"

// IWYU pragma: no_include <algorithm>
#include <string>
#include <vector>

/// A module with a work area: a static library, or what a link driver linked.
struct Module {
    std::string name; ///< directory of the work area in the project
    std::string area; ///< ROOT/NAME/codemeasure, absolute
};

/// The root of the project's data, absolute: that of the option "--project", else that of
/// "qmr_current_prj_path" (a project file stands for its directory; where one tree is built for
/// several platforms, the platform's subdirectory counts), else the current directory or the
/// nearest above it that has ".lltcov". The directory of the option, and the current one, stand for
/// their directory ".lltcov" where they have one.
std::string project_root(const CommandLine& line);

/// A directory that was `there` when programs were built or ran, and is `here`: absolute, without
/// slashes at their ends.
struct PathMap {
    std::string there;
    std::string here;
};
using PathMaps = std::vector<PathMap>;

/// Those of the options "--map THERE=HERE". Throws `UsageError` for others.
PathMaps path_maps(const CommandLine& line);

/// The path as it is here: below the first THERE that it is below, else as it stands.
std::string mapped_path(const PathMaps& maps, const std::string& path);

/// DIRECTORY/.lltcov where the settings have made it, else the directory itself.
std::string own_directory(const std::string& directory);

/// Where lltcov keeps something of this name: in ".lltcov", else in LLTTEMP, since what lies beside
/// LLTTEMP may be the user's.
std::string kept_place(const std::string& root, const std::string& name);

/// True for DIRECTORY/.lltcov itself.
bool is_own_directory(const std::string& root);

/// The project's directory, in which its sources are: the root, or what holds ".lltcov" above it.
std::string project_directory(const std::string& root);

/// The modules of the project, by name. LLTTEMP is none.
std::vector<Module> modules_of(const std::string& root);

/// Where the tested programs write their counts: "LLTCOV_ROOT", else "lltcovRootpath", else
/// ROOT/llt_result.
std::string dump_root(const std::string& root);

/// True for the name of a dump file.
bool is_dump(const std::string& name);

/// True for the name of a file that lies beside a dump for its next writer (".NAME.lltcov.tmp").
bool is_spare_dump(const std::string& name);

/// True for a path below the directory, both absolute and without "." and "..".
bool is_inside(const std::string& path, const std::string& directory);

/// The path as people read it: relative to the directory when it is inside.
std::string shown_path(const std::string& path, const std::string& directory);
