// Coverage symbols resolved to their sources and objects, and compared with the last archive step.
#pragma once

#include "lltld/inst_file_list.h"
#include "lltld/tuple_db.h"

#include <vector>

/// Resolves a symbol to its paths through the symbol's INI file, section "StubFiles". `src` and
/// `obj` have INST_NAME_SIZE bytes; `obj` stays as it is when the file does not tell. Returns 1, or
/// 0 after a message when the file or its source path is missing.
int GetSrcObjPath(char* src, char* obj, const char* symbol);

/// Resolves every node of the list: fills its paths and appends a record to `new_records`.
/// Returns 1, or 0 at the first symbol that cannot be resolved, after telling the user what went
/// missing; `old_records` say which source it was.
int GetNewInstInfo(_InstFileList& list, std::vector<_STInstInfo>& new_records,
                   std::vector<_STInstInfo>& old_records);

/// Looks the record's symbol up in the old records and fills in the paths of the first one that
/// has it. Returns 1 when there is one, else 0.
int GetSymbolInfoFromTuple(_STInstInfo* info, std::vector<_STInstInfo>& old_records);

/// Deletes what was left under each old record whose source and object are those of a new record
/// under another symbol, at most one old record per new one, and replaces it in `old_records` by
/// the new record. Empty old records become a copy of the new ones.
void UpdateDB_DelExpiredFile(std::vector<_STInstInfo>& old_records,
                             std::vector<_STInstInfo>& new_records);

/// Brings the work area's `tuple.db` up to date with `instFileList`: the three operations above on
/// the old file's records, then the new file. False, the old file kept, when a symbol could not be
/// resolved or the file's path is too long, after a message.
bool update_tuple_database();
