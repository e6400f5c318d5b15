// How lltwrapper calls a driver: the driver's own options, and the wrapped command after them.
#pragma once

#include "toolset/common/process.h"

#include <string>

/// lltcc -qmr_current_prj_path PROJECT -projectname NAME -qmr_coverage_stub_mold MODE COMMAND...
struct DriverCall {
    std::string project; ///< empty, a directory, or a .prj file
    std::string name;    ///< target name of a link
    int stub_mode = 0;   ///< 0 when it is not set, as the archive steps of the build take it
    Words command;       ///< tool and arguments; empty when there are none
};

/// Reads the words after the driver's name. Values may be missing: where a setting is empty, the
/// shell that split the command has left no word behind. Without a command, or with an option in
/// its place, a notice says how a driver is called.
DriverCall read_driver_call(const Words& arguments);

/// A name of 16 hexadecimal digits for the texts in this order (FNV-1a, 64 bits).
std::string hash_name(const Words& texts);
