// The stub of a module: a C source that declares the counter arrays of its sources, registers them
// with the coverage runtime when the module is loaded, and has them dumped when it is unloaded.
#pragma once

#include "lltld/source_tab.h"

#include <cstdio>

/// Exactly 1: the generator also writes the agent configuration file. 0 in the wrapper.
extern int g_noLinkCodemeasure;

/// Writes the stub of the module and the numbered merged table, and compiles the stub. Returns the
/// result of `LD_CompileCovInitCodeFile`, or 0 after a message.
int Caddis_Coverage_CreateCovInitCodeFile();

/// Writes the stub's fixed header, 1,061 bytes.
void Caddis_CovInitCodeFile_Func_Declare(std::FILE* stub);

/// Reads the custom counter element type, option "-hcov_type" in "InstCode.ini" beside the running
/// executable, into `szCov_type`; `cov_type` becomes 1 for a type with "unsigned long".
void Caddis_LD_CovTypeIsCustom();

/// Writes the stub after its arrays, and the agent configuration file when that is enabled.
/// Returns 1, or 0 when the latter failed. The caller keeps owning the table.
int LD_LinuxCompileCovInitCodeFile(_SOURCEFILE_TAB table, std::FILE* stub);

/// Writes one registration call per record.
void LD_WriteCoverageInterface(_SOURCEFILE_TAB table, std::FILE* stub);

/// 1 when "LLT_DISABLE_SOCKET" is exactly 1, else 0.
int TUSK_CADDIS_IsDisableSocket();
