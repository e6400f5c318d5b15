// The INI file of a coverage symbol: where its source and its object were when it was compiled. The
// compiler driver writes it into the temporary area; archive and link steps read it, and copy it to
// the work area. Values are lines as they are.
//
//     [StubFiles]
//     StubFilePath1=/p/src/util.c
//     ObjFilePath=/p/obj/util.o
#pragma once

#include <string>

/// The file's text.
std::string source_ini(const std::string& source, const std::string& object);

/// Reads the file at `path` into two buffers of `size` bytes; a longer value is cut, and what is
/// missing leaves its buffer as it is. False when there is no source; no object is looked for then.
bool read_source_ini(const char* path, char* source, char* object, int size);
