// Names that the drivers, the archive step and its stub agree on, and what a stub needs to compile.
#pragma once

#include "contract/names.h" // IWYU pragma: export

#include <string>

/// The module that an archive step makes of the archive.
std::string module_of_archive(const std::string& path);

/// True for a module name that can be a part of a C identifier, as its stub makes it one.
bool fits_identifier(const std::string& name);

/// True when a stub with sockets compiles with this recorded command: the command or a header that
/// it includes by "-include" names the port.
bool declares_port(const std::string& command);
