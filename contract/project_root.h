// Where the data of a project are: the place of its modules' work areas, and what is in their way.
// Unlike places, these look at the disk and the environment.
#pragma once

#include <string>

/// The root of the data of the project that the path stands for: the directory of a project file,
/// else the path itself; where one tree is built for several platforms ("isOverlappedCompile"), the
/// platform's subdirectory. Empty for an empty path.
std::string root_of_project(const std::string& path);

/// What keeps the module's work area from being made: a path below the root that is no directory.
/// Empty when nothing does.
std::string in_place_of_area(const std::string& root, const std::string& module);

/// True for the directory ROOT/M of a module's work area that holds nothing else: a program of that
/// name cannot be written.
bool is_place_of_area(const std::string& path);
