// Compilation of the stub.
#pragma once

/// User-given second-stage commands, 1,024 bytes each, NUL-terminated; empty in the wrapper.
extern char g_lltusercmd[1024];
extern char g_lltusercmd2[1024];

/// Compiles the module's stub with the work area's recorded compile command. Returns 1 when every
/// command that ran returned 0; else 0, after a message when there is no recorded command.
int LD_CompileCovInitCodeFile();
