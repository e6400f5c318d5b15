// The copy against the real "cp -rf", situation by situation.
#include "commonfunc/file_tree.h"
#include "tests/fixture.h"

#include <unistd.h>

TEST_F(TestDir, ATreeIsCopiedAsCpDoes)
{
    const char* const situations[] = {
        "mkdir -p s/a d/s/a; echo 1 >s/a/f; echo old >d/s/a/f; echo keep >d/s/a/g; echo 3 >s/.h",
        "echo 1 >s; mkdir d; chmod 4751 s",
        "echo 1 >s; chmod 700 s; echo longer >d; chmod 604 d",
        "mkdir s s/a s/b; chmod 2751 s; chmod 1777 s/a; chmod 500 s/b",
        "mkdir s; ln -s /nowhere s/l; echo 1 >s/a; ln -s a s/m; ln s/a s/b; mkfifo s/p",
        "mkdir s t; echo 1 >s/f; ln -s t d",
        "echo 1 >s; ln -s nowhere d",
        "mkdir -p s d/s; echo new >s/l; echo old >t; ln -s ../../t d/s/l",
        "mkdir -p s d/s; ln -s a s/l; ln -s a s/m; echo old >d/s/l; ln -s b d/s/m",
        "mkdir -p s/c d/s/a; echo 1 >s/a; echo 2 >s/b; echo 3 >d/s/c",
        "mkdir -p s/l d/s t; echo 1 >s/l/f; ln -s ../../t d/s/l",
        "mkdir -p s d/s; echo 1 >s/f; ln s/f d/s/f; ln -s ../../s/f d/s/g; ln s/f s/g"};
    const auto sh = [](const std::string& text) { return std::system(text.c_str()); };
    const std::string list =
        " && find . -printf '%P %y %m %n %l\\n' -type f -exec cat {} + | sort >";
    for (const std::string row : situations) {
        ASSERT_EQ(sh("rm -rf x y; mkdir x y; for i in x y; do (cd $i; " + row + "); done"), 0);
        const bool copied = sh("cd x && cp -rf s d 2>/dev/null") == 0;
        testing::internal::CaptureStderr();
        EXPECT_EQ(::chdir("y") == 0 && copy_tree("s", "d"), copied) << row;
        EXPECT_EQ(testing::internal::GetCapturedStderr().empty(), copied) << row;
        ASSERT_EQ(sh("cd ../x" + list + "../in_x; cd ../y" + list + "../in_y") + ::chdir(".."), 0);
        EXPECT_EQ(read_file("in_y"), read_file("in_x")) << row;
    }
}
