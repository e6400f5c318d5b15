// The module's work area: entering it, and emptying it before it is filled anew. An archive step
// and a link driver do the same here.
#pragma once

#include <string>

/// Makes ROOT/MODULE/codemeasure the work area (`szCovDictPath`, `modName`); nothing is created. A
/// path that had to be cut is noted in `isCovDictPathCut`.
void name_work_area(const std::string& root, const std::string& module);

/// `name_work_area`, then creates it, locks it until the process ends or enters another one, and
/// makes ROOT/LLTTEMP the temporary area (`szLLTTEMP`). False after a message when the work
/// area could not be created.
bool enter_work_area(const std::string& root, const std::string& module);

/// The file that was last built with this work area, where percent signs may be squeezed; empty for
/// a fresh area.
std::string output_of_work_area();

/// Removes what an earlier build left in db (but `tuple.db`), obj/before and ini. False when that
/// was impossible, and true, after a warning, when no work area is known.
bool clear_work_area();
