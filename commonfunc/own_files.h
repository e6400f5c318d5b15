// Files that are installed with the programs.
#pragma once

#include <string>

/// The path of such a file or directory, for example "lltcc" or "TUSK_INIT.SH", by its name in its
/// directory of the installation; empty when there is none.
std::string own_file(const std::string& name);

/// The directory of the drivers that are installed with this program, which is in the directory of
/// programs for users; whether there is one is not looked at.
std::string installed_drivers();
