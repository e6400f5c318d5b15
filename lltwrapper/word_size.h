// The word size of the wrapped command, and whether link names carry it.
#pragma once

#include <string>

/// Records "_m32" for the option "-m32", else "_m64". The last one of a command wins.
void TUSK_SetType_m32m64(const char* option);

/// The recorded word size, empty when no option was seen.
std::string& TUSK_GetType_m32m64();

/// 1 when "TUSK_ENABLE_m32m64" is set, not empty and non-zero, else 0; the environment is read
/// once per process.
unsigned int TUSK_LINUXCADDIS_IsEnable3264();

/// `strLinkName`; when suffixes are enabled, after setting "TUSK_innerenv_m32m64" ("1" for _m32,
/// else "2") for the tool that is run, and with the word size appended. Each call appends again.
std::string& TUSK_LINUXCADDIS_GET3264STR();
