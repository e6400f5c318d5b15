// Which kind of build step the wrapped command is.
#pragma once

/// Scans the wrapped command's arguments (argument 1 is the tool), sets exactly one of the mode
/// flags, and derives the module or target name. Prints its decisions about kernel targets.
/// `parser` calls it once, after it has recorded the suffix options.
void checkstate(int argc, char** argv);
