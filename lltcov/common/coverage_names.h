// Names that the drivers, the archive step and its stub agree on, and what a stub needs to compile.
#pragma once

#include <cstddef>
#include <string>

/// Longest coverage symbol whose own table the archive step finds, in bytes.
constexpr std::size_t MAX_SYMBOL = 31;

/// What the counter array of a coverage symbol is called: this, and the symbol.
constexpr char ARRAY_PREFIX[] = "g_QMRCovData_";

/// What the stub of a module is called, as object and as member: this, and the module's name.
constexpr char STUB_PREFIX[] = "__code_measure_stub_lib_";

/// True for a module name that can be a part of a C identifier, as its stub makes it one.
bool fits_identifier(const std::string& name);

/// True when a stub with sockets compiles with this recorded command: the command or a header that
/// it includes by "-include" names the port.
bool declares_port(const std::string& command);
