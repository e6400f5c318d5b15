// The module's work area: entering it, and emptying it before it is filled anew. An archive step
// and a link driver do the same here.
#pragma once

#include <string>

/// Makes ROOT/MODULE/codemeasure the work area and ROOT/LLTTEMP the shared temporary area
/// (`szCovDictPath`, `szLLTTEMP`, `modName`), creates the former and locks it until the process
/// ends or enters another one. False after a message when it could not be created; a path that had
/// to be cut is noted in `isCovDictPathCut`.
bool enter_work_area(const std::string& root, const std::string& module);

/// The file that was last built with this work area, from "sutpath" of its ".prj", where percent
/// signs may be squeezed; empty for a fresh area.
std::string output_of_work_area();

/// Removes what an earlier build left in db (but `tuple.db`), obj/before and ini. False when that
/// was impossible, and true, after a warning, when no work area is known.
bool clear_work_area();
