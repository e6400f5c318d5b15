// Files of the tool set beside its programs.
#pragma once

#include <string>

/// The path of the file that is installed as lib/lltcov/NAME: from beside this program, as in the
/// build tree, or under ../lib. Empty when there is none.
std::string own_file(const std::string& name);
