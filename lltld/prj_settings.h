// Loading the project settings from the environment and the project's "tusk_g.ini" into
// `g_lxprj`, and creating the module's work area.
#pragma once

/// How sources of the same name are told apart: 1 by default, 2 when "SupportSameName" is 2.
extern int g_iSupportSameName;

/// Loads the settings from the environment. Returns 1, or 0 after printing the configuration
/// block for an invalid switch or a missing value; what was read before the error stays.
int init_lltld();

/// Fills project path, name, port and the root of the work area from
/// "qmr_current_prj_path", and loads the usage context. Returns 1, or 0 when that is unset.
/// Comes after `init_lltld`, whose `szPrjPath` names the directory of "tusk_g.ini".
int Caddis_LD_GetCovDictPath();

/// Prints the link banner and calls both; returns the result of `Caddis_LD_GetCovDictPath` as 1
/// or 0. A configuration error does not stop it.
int Caddis_LD_Initial();

/// Creates `szCovDictPath` and db, log, obj, ini, obj/before, obj/after in it. Returns 1, or 0 at
/// the first directory that cannot be created or whose path is too long for 511 bytes.
int CodeMeasure_CreateDir();
