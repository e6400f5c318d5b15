// Programs on PATH.
#pragma once

#include <string>
#include <vector>

/// The directories of PATH; relative ones, whose meaning changes with the current one, are left
/// out.
std::vector<std::string> path_directories();

/// True for a regular file that may be executed.
bool is_program(const std::string& path);

/// The first program of this name in the directories; empty when there is none.
std::string find_program(const std::vector<std::string>& directories, const std::string& name);

/// The file that a shell starts for this name: the name itself when it has a slash, else of the
/// directories of PATH, relative ones too. Empty when there is no such program.
std::string program_on_path(const std::string& name);
