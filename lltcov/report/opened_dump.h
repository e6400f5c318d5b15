// Dump files on disk: programs may be writing them, and their content may be anything.
#pragma once

#include "contract/dump_file.h"

#include <string>

/// Opens a dump file and reads its header; programs take another file until the reader is gone.
/// Throws `FormatError` for a file that is not sound, another std::exception for one that cannot be
/// read; never waits for a file that is no regular one.
DumpReader open_dump(const std::string& path);
