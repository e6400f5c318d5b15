// The project that is looked at: where it is, and the work areas of its modules.
#pragma once

#include "lltcov/common/command_line.h"

#include <string>
#include <vector>

/// A module with a work area: a static library, or what a link driver linked.
struct Module {
    std::string name; ///< folder of the work area in the project
    std::string area; ///< ROOT/NAME/codemeasure, absolute
};

/// The project's folder, absolute: of the option "--project", else of "qmr_current_prj_path" (whose
/// project file, when it names one, stands for its folder, and whose platform's subfolder counts
/// where one tree is built for several), else the current folder.
std::string project_root(const CommandLine& line);

/// The modules of the project, by name. LLTTEMP is none.
std::vector<Module> modules_of(const std::string& root);

/// Where the tested programs write their counts: "LLTCOV_ROOT", else "lltcovRootpath", else
/// ROOT/llt_result.
std::string dump_root(const std::string& root);

/// True for the name of a dump file.
bool is_dump(const std::string& name);

/// True for the name of a file that lies beside a dump for the next that writes it
/// (".NAME.lltcov.tmp").
bool is_spare_dump(const std::string& name);

/// True for a path below the folder, both absolute and without "." and "..".
bool is_inside(const std::string& path, const std::string& folder);

/// The path as people read it: relative to the folder when it is inside.
std::string shown_path(const std::string& path, const std::string& folder);

/// The names in a directory, in byte order, without "." and ".."; empty when it cannot be read.
std::vector<std::string> names_in(const std::string& directory);
