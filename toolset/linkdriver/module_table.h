// The table of a link's module (contract/module_table.h), as a text for the compiler's assembler.
#pragma once

#include "lltld/source_tab.h"

#include <string>

/// The text for the sources of this table, whose records are complete, the settings of `g_lxprj`
/// and the build id. All arrays are weak: an object may be in a static library as well, whose own
/// stub defines the same array. The directives are those that assemblers have on every target.
std::string module_table(const _SOURCEFILE_TAB& sources, const char* build_id);
