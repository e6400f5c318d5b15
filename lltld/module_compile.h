// From the archive's objects to the module's recorded compile settings.
#pragma once

#include "lltld/object_scan.h"

#include <vector>

/// Registers the coverage symbols of every object of the list (NUL-terminated absolute paths
/// ended by an empty string), then loads the module's compile settings: "CompileCmd.txt" of the
/// first registered symbol that has one is copied into the work area. Returns 1, or 0 after a
/// message when an object cannot be read, no symbol is registered, or no record is found.
int GetInstInfo(const char* list);

/// `GetInstInfo` for objects that have been read already.
int register_scanned_objects(const std::vector<ScannedObject>& objects);

/// `strToolPath`: the directory of the running executable.
void SetToolPath();

/// `m_str_include`: the include options of the tools, and macros and include options of the work
/// area's "CompileOption.ini"; a missing file is reported.
void SetModTcInc();

/// `strCompileCmd`: the content of the work area's "CompileCmd.txt" up to its first NUL. Returns
/// 1, or 0 (and empty text) after a message when it cannot be read.
int SetModCompileCmd();
