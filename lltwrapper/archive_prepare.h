// First half of archive mode: what is needed before the database can be brought up to date.
#pragma once

#include "lltld/object_scan.h"

#include <string>
#include <vector>

/// Loads the project settings, and makes the archive's stem in `strLinkName` the module's name: at
/// most 255 bytes, "-" made "_". `szCovDictPath` then is the root of the work areas. False after a
/// message when no archive name was found.
bool load_archive_settings();

/// Warns when the work area belongs to another archive of the same stem: the two take turns in it,
/// and each build throws away the other's coverage.
void warn_if_work_area_is_shared();

/// The files among the arguments that hold coverage symbols and no stub; every argument is looked
/// at, the archiver and the archive too. Reads them, and warns of one that it does not inspect.
std::vector<ScannedObject> members_with_coverage(const std::vector<std::string>& arguments);

/// Loads the project settings, creates and locks the module's work area, and registers the
/// coverage symbols of the archive's members. `ar_flag` stays 1 when there is something to do, or
/// when no archive name was found; otherwise the archiver runs unchanged. `checkstate` calls it
/// with its own argument vector.
void prepare_archive(int argc, char** argv);
