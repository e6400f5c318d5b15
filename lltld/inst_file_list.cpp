// The list is all that is remembered: whoever holds a node may rename it, and whoever holds the
// list may begin it anew. An archive of 10,000 objects has its names looked up in an index, which
// lives no longer than the one operation that records them all.
#include "lltld/inst_file_list.h"

#include "commonfunc/message.h"

#include <cstdio>
#include <new>

namespace
{

/// The name as a node stores it, so that names stay unique when a long one is cut.
std::string stored_form(const std::string& name)
{
    return std::string(name.c_str()).substr(0, INST_NAME_SIZE - 1);
}

int append(const std::string& name)
{
    auto* node = new (std::nothrow) _InstFile;
    if (node == nullptr) {
        std::puts("Allocate memory failed!");
        warn("no memory is left for the counters of '%s'; run the step again with more",
             name.c_str());
        return 0;
    }
    WriteInstFileNameTolist(name.c_str(), &instFileList, node);
    return 1;
}

} // namespace

InstNameRecorder::InstNameRecorder()
{
    for (const _InstFile* node = instFileList.pHead; node != nullptr; node = node->pNext) {
        names_.insert(node->szInstFileName);
    }
}

int InstNameRecorder::record(const std::string& name)
{
    const std::string stored = stored_form(name);
    if (names_.count(stored) != 0) {
        return 1;
    }
    if (append(stored) == 0) {
        return 0;
    }
    names_.insert(instFileList.pTail->szInstFileName);
    return 1;
}

int WriteDBNameToList(const char* name)
{
    const std::string stored = stored_form(name);
    return IsFileExistInList(stored.c_str()) != 0 ? 1 : append(stored);
}

int IsFileExistInList(const char* name)
{
    for (const _InstFile* node = instFileList.pHead; node != nullptr; node = node->pNext) {
        if (node->szInstFileName == name) {
            return 1;
        }
    }
    return 0;
}

void WriteInstFileNameTolist(const char* name, _InstFileList* list, _InstFile* node)
{
    node->szInstFileName = stored_form(name);
    node->pNext = nullptr;
    if (list->pHead == nullptr) {
        list->pHead = node;
    } else {
        list->pTail->pNext = node;
    }
    list->pTail = node;
    ++list->iCount;
}
