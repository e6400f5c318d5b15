// The probe map: which lines each counter of a source stands for.
#pragma once

#include "asm_scan.h"
#include "records.h"
#include "source_files.h"

#include <string>
#include <vector>

/// The text of probes.txt.
std::string probe_map(const AsmText& text, const std::vector<std::size_t>& probes,
                      const Record& record, SourceFiles& files);
