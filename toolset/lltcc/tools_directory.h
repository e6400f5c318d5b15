// Where the files lie that lltcc hands to compilers.
#pragma once

#include <string>

/// The directory that holds this program as `as`, gcc's specs and the stubs' headers: beside the
/// program in the build tree, under ../lib when installed. Empty when there is none.
std::string tools_directory();
