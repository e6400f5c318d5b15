// The copy against the real "cp -rf", situation by situation.
#include "commonfunc/file_tree.h"
#include "tests/fixture.h"

#include <algorithm>
#include <filesystem>
#include <unistd.h>

using CopyTree = TestDir;

TEST_F(CopyTree, LeavesWhatCpLeavesAndWarnsOfEachFailure)
{
    const struct {
        const char* what;
        const char* setup; ///< then "s" is copied to "d"
        int warnings;
    } rows[] = {
        {"merged into an existing directory",
         "mkdir -p s/a d/s/a; echo 1 >s/a/f; echo old >d/s/a/f; echo keep >d/s/a/g; echo 3 >s/.h",
         0},
        {"a file into a directory, without its set-user bit", "echo 1 >s; mkdir d; chmod 4751 s",
         0},
        {"an existing file keeps its mode", "echo 1 >s; chmod 700 s; echo longer >d; chmod 604 d",
         0},
        {"modes of directories", "mkdir s s/a s/b; chmod 2751 s; chmod 1777 s/a; chmod 500 s/b", 0},
        {"links and special files",
         "mkdir s; ln -s /nowhere s/l; echo 1 >s/a; ln -s a s/m; ln s/a s/b; mkfifo s/p", 0},
        {"through a link to a directory", "mkdir s t; echo 1 >s/f; ln -s t d", 0},
        {"not through a dangling link", "echo 1 >s; ln -s nowhere d", 1},
        {"a file is written through a link",
         "mkdir -p s d/s; echo new >s/l; echo old >t; ln -s ../../t d/s/l", 0},
        {"a link replaces files and links",
         "mkdir -p s d/s; ln -s a s/l; ln -s a s/m; echo old >d/s/l; ln -s b d/s/m", 0},
        {"a file over a directory and the reverse",
         "mkdir -p s/c d/s/a; echo 1 >s/a; echo 2 >s/b; echo 3 >d/s/c", 2},
        {"a directory over a link to one", "mkdir -p s/l d/s t; echo 1 >s/l/f; ln -s ../../t d/s/l",
         1},
        {"a file over itself",
         "mkdir -p s d/s; echo 1 >s/f; ln s/f d/s/f; ln -s ../../s/f d/s/g; ln s/f s/g", 2},
        {"a directory into itself", "mkdir s; ln -s s d", 1},
        {"a directory into one inside it", "mkdir -p s/t; ln -s s/t d", 1},
    };
    const auto sh = [](const std::string& text) { return std::system(text.c_str()); };
    const std::string list =
        " && find . -printf '%P %y %m %n %l\\n' -type f -exec cat {} + | sort >";
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        ASSERT_EQ(sh(std::string("rm -rf x y; mkdir x y; for i in x y; do (cd $i; ") + row.setup +
                     "); done"),
                  0);
        EXPECT_EQ(sh("cd x && cp -rf s d 2>/dev/null") == 0, row.warnings == 0);
        testing::internal::CaptureStderr();
        EXPECT_EQ(::chdir("y") == 0 && copy_tree("s", "d"), row.warnings == 0);
        const std::string warned = testing::internal::GetCapturedStderr();
        EXPECT_EQ(std::count(warned.begin(), warned.end(), '\n'), row.warnings) << warned;
        ASSERT_EQ(sh("cd ../x" + list + "../in_x; cd ../y" + list + "../in_y") + ::chdir(".."), 0);
        EXPECT_EQ(read_file("in_y"), read_file("in_x"));
    }
}

TEST_F(CopyTree, IntoItselfCopiesTheRest)
{
    std::filesystem::create_directories("s/a/b");
    write_file("s/f", "1");
    EXPECT_FALSE(copy_tree("s", "s/n"));
    EXPECT_TRUE(std::filesystem::is_directory("s/n/a/b"));
    EXPECT_EQ(read_file("s/n/f"), "1");
    EXPECT_FALSE(std::filesystem::exists("s/n/n"));
}
