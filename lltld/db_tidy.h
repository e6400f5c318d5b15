// Pass 1 over the listed symbols: one merged table, numbered densely from 0, and copies of their
// records under those numbers.
#pragma once

/// Writes the work area's merged table with one record per symbol of `instFileList`, and in
/// same-name mode 1 copies each symbol's database directory and INI file into the work area; the
/// saved objects, most of the bytes, are left to `copy_saved_objects`. Returns 1, or 0 when a step
/// failed; the merged table is removed then, and the saved objects so far are copied.
int TidyCoverageDB();

/// Copies the saved objects that `TidyCoverageDB` has left, once. Time for it is while the stub is
/// compiled, on another processor.
void copy_saved_objects();
