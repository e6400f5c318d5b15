// The list of instrumented files, whoever changes it.
#include "lltld/inst_file_list.h"
#include "tests/lltld/work_area.h"

#include <utility>

using InstFileList = WorkArea;

namespace
{

/// Frees the nodes that the list holds, and begins it anew.
void free_list()
{
    for (_InstFile* node = instFileList.pHead; node != nullptr;) {
        delete std::exchange(node, node->pNext);
    }
    instFileList = {};
}

} // namespace

TEST_F(InstFileList, AnswersAfterAnyChangeOfTheList)
{
    for (const char* name : {"a", "b"}) {
        EXPECT_EQ(WriteDBNameToList(name), 1);
    }
    const _InstFileList recorded = instFileList;
    EXPECT_EQ(IsFileExistInList("a") + IsFileExistInList("b"), 2);
    EXPECT_EQ(IsFileExistInList("A") + IsFileExistInList("") + IsFileExistInList("ab"), 0);

    recorded.pHead->szInstFileName = "new"; // a node is renamed
    EXPECT_EQ(IsFileExistInList("a"), 0);
    EXPECT_EQ(IsFileExistInList("new"), 1);

    instFileList = {}; // the list is begun anew with a node that it had
    delete recorded.pTail;
    WriteInstFileNameTolist("again", &instFileList, recorded.pHead);
    EXPECT_EQ(IsFileExistInList("new") + IsFileExistInList("b"), 0);
    EXPECT_EQ(IsFileExistInList("again"), 1);

    EXPECT_EQ(WriteDBNameToList("b") + WriteDBNameToList("b"), 2); // recorded, but once
    EXPECT_EQ(instFileList.iCount, 2);

    const std::string name(259, 'n'), longer = name + "n"; // cut, and found as it was cut
    EXPECT_EQ(WriteDBNameToList(longer.c_str()) + WriteDBNameToList(longer.c_str()), 2);
    EXPECT_EQ(instFileList.iCount, 3);
    EXPECT_EQ(IsFileExistInList(longer.c_str()), 0);
    EXPECT_EQ(IsFileExistInList(name.c_str()), 1);
    free_list();
}
