// Pass 1 over the listed symbols: one merged table, numbered densely from 0, and copies of their
// records under those numbers.
#pragma once

/// Writes the work area's merged table with one record per symbol of `instFileList`, and in
/// same-name mode 1 copies each symbol's database directory, INI file and saved object into the
/// work area. Returns 1, or 0 when a step failed; the merged table is removed then.
int TidyCoverageDB();
