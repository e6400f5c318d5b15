// What a link without coverage needs all the same: the definitions that its counted objects refer
// to.
#pragma once

#include "lltld/object_scan.h"

#include <string>
#include <vector>

/// Its name without suffix, in obj/ of a work area.
inline constexpr char PLAIN_OBJECT[] = "plain_arrays";

/// An object of the counter arrays of these objects and of `functions`, a text that takes the
/// runtime's place, so that a link succeeds where the runtime cannot be. It is in the work area, or
/// in a temporary directory until the program ends. Returns its path, or an empty path when a size
/// is not known or it does not compile.
std::string make_plain_object(const std::vector<ScannedObject>& objects,
                              const std::string& functions);
