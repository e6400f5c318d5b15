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

/// The names of the nodes that were linked into `instFileList`.
struct Index {
    std::unordered_set<std::string> names;
    int nodes = 0; ///< how many nodes of the list it knows
};

Index index_of_list;

void add_to_index(const char* name)
{
    index_of_list.names.insert(name);
    ++index_of_list.nodes;
}

/// The index; made anew when the list was changed by another hand.
const std::unordered_set<std::string>& names_in_list()
{
    if (index_of_list.nodes != instFileList.iCount) {
        index_of_list = Index();
        for (const _InstFile* node = instFileList.pHead; node != nullptr; node = node->pNext) {
            add_to_index(node->szInstFileName);
        }
    }
    return index_of_list.names;
}

} // namespace

int WriteDBNameToList(const char* name)
{
    // Compared as it is stored, so that names stay unique when a long one is cut.
    char stored[INST_NAME_SIZE];
    QMRStrcpy(stored, name, INST_NAME_SIZE);
    if (IsFileExistInList(stored) != 0) {
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
    if (list == &instFileList) {
        names_in_list();
        add_to_index(node->szInstFileName);
    }
    ++list->iCount;
}
