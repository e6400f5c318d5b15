// The instrumented-file list: the coverage symbol names found in the current command's objects,
// each once, in the order in which they were found.
#pragma once

#include <string>
#include <string_view>
#include <unordered_set>

/// Bytes of a coverage symbol name or a recorded path, with its NUL.
constexpr int INST_NAME_SIZE = 260;

/// One instrumented source. Its texts have at most 259 bytes and take no more than they have: an
/// archive has thousands.
struct _InstFile {
    _InstFile* pNext = nullptr; ///< next node, null at the tail
    std::string szInstFileName; ///< coverage symbol name
    std::string szSrcFileName;  ///< source path, filled by `GetNewInstInfo`
    std::string szObjFileName;  ///< object path, likewise
};

/// A list of instrumented sources; it owns its nodes and lives until the process ends.
struct _InstFileList {
    int iCount = 0;             ///< number of nodes
    _InstFile* pHead = nullptr; ///< first node
    _InstFile* pTail = nullptr; ///< last node
};

/// The list of this process; defined by the program.
extern _InstFileList instFileList;

/// Records a name (cut to 259 bytes) in `instFileList` unless it is there. Returns 1, or 0 after
/// printing "Allocate memory failed!" when no node can be allocated.
int WriteDBNameToList(const char* name);

/// Records many names, each looked up in an index of those in `instFileList`. It lives during one
/// operation, in which nobody else changes the list.
class InstNameRecorder
{
public:
    InstNameRecorder(); ///< indexes the names that the list has now

    /// Like `WriteDBNameToList`.
    int record(const std::string& name);

private:
    std::unordered_set<std::string_view> names_; ///< the nodes' own texts
};

/// 1 when a node of `instFileList` has exactly this name, else 0.
int IsFileExistInList(const char* name);

/// Copies the name (cut to 259 bytes) into the node and links the node at the list's tail.
void WriteInstFileNameTolist(const char* name, _InstFileList* list, _InstFile* node);
