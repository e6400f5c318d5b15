// A linked list with an index beside it: an archive of 10,000 objects asks 10,000 times whether a
// name is there.
#include "lltld/inst_file_list.h"

#include "commonfunc/text.h"

#include <cstdio>
#include <new>
#include <string>
#include <unordered_set>

namespace
{

/// The names of `instFileList` as it was when the index was last brought up to date.
struct Index {
    std::unordered_set<std::string> names;
    _InstFileList list;
};

/// The names in the list; collected anew when the list was changed by another hand.
std::unordered_set<std::string>& names_in_list()
{
    static Index index;
    const bool same = index.list.pHead == instFileList.pHead &&
                      index.list.pTail == instFileList.pTail &&
                      index.list.iCount == instFileList.iCount;
    const bool one_more = index.list.pHead != nullptr && index.list.pHead == instFileList.pHead &&
                          index.list.pTail != nullptr && !same &&
                          index.list.iCount + 1 == instFileList.iCount &&
                          index.list.pTail->pNext == instFileList.pTail;
    if (one_more) {
        index.names.insert(instFileList.pTail->szInstFileName);
    } else if (!same) {
        index.names.clear();
        for (const _InstFile* node = instFileList.pHead; node != nullptr; node = node->pNext) {
            index.names.insert(node->szInstFileName);
        }
    }
    index.list = instFileList;
    return index.names;
}

} // namespace

int WriteDBNameToList(const char* name)
{
    // Compared as it is stored, so that names stay unique when a long one is cut.
    char stored[INST_NAME_SIZE];
    QMRStrcpy(stored, name, INST_NAME_SIZE);
    if (names_in_list().count(stored) != 0) {
        return 1;
    }
    auto* node = new (std::nothrow) _InstFile;
    if (node == nullptr) {
        std::puts("Allocate memory failed!");
        return 0;
    }
    WriteInstFileNameTolist(stored, &instFileList, node);
    return 1;
}

int IsFileExistInList(const char* name)
{
    return static_cast<int>(names_in_list().count(name));
}

void WriteInstFileNameTolist(const char* name, _InstFileList* list, _InstFile* node)
{
    QMRStrcpy(node->szInstFileName, name, INST_NAME_SIZE);
    node->pNext = nullptr;
    if (list->pHead == nullptr) {
        list->pHead = node;
    } else {
        list->pTail->pNext = node;
    }
    list->pTail = node;
    ++list->iCount;
}
