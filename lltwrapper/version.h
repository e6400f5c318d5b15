// The program's version banner.
#pragma once

/// Prints the banner on standard output: name, version, build time and date.
void ShowVersion();
