// First half of archive mode: what is needed before the database can be brought up to date.
#pragma once

#include "lltld/object_scan.h"

#include <string>
#include <vector>

/// How the work area ROOT/MODULE/codemeasure is entered: `enter_work_area`, or what only names it.
using EnterWorkArea = bool(const std::string& root, const std::string& module);

/// What is known of an archive step before its coverage work.
struct ArchivePlan {
    bool is_named = false;              ///< an archive name was found; else the rest is empty
    std::vector<std::string> arguments; ///< with the words of response files
    std::vector<ScannedObject> members; ///< those that hold coverage symbols and no stub
};

/// Loads the project settings, makes the archive's stem in `strLinkName` the module's name (at most
/// 255 bytes, "-" made "_"), enters the module's work area and reads the arguments, the archiver,
/// the archive and the words of response files too. Tells when no archive name was found, when the
/// work area belongs to another archive, and of an argument that is not inspected.
ArchivePlan plan_archive(const std::vector<std::string>& arguments, EnterWorkArea enter);

/// After a failed step: names the first member that holds counters of a source whose record is
/// gone, an archive for the most part, which no compile makes anew.
void warn_of_stale_member();
