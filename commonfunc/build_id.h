// The build id and local time stamps.
#pragma once

/// The build id of this run: empty until `TUSK_Build_GetBUID` fills it, then never
/// changed. 260 bytes, NUL-terminated.
extern char g_szBuildID[260];

/// Returns `g_szBuildID`, made on the first call: the year character, the local time as
/// "%m%d%H%M%S", and "_" with the value of "PRODUCT_VERSION" when that is set and not empty
/// (cut to 259 bytes in all). Example: Q1115113445.
char* TUSK_Build_GetBUID();

/// Writes a fresh build id without the version part and a NUL, 12 bytes, into `out`; does
/// nothing when `out` is null.
void TUSK_Build_GenerateBUID(char* out);

/// The character for a year, given as years since 2000: the most significant digit of that number
/// in base 36 ('Q' for 2026, 'Z' for 2035, '1' for 2036). NUL for the year 2000, '0' before it.
char year_character(int years_since_2000);

/// The current local time formatted by strftime(3), its limit with NUL being `size` - 1 bytes,
/// into `out`; empty when the text does not fit. Does nothing when `size` is 0.
void QMRTimeFormatStr(char* out, unsigned long size, const char* format);
