#include "commonfunc/file_io.h"
#include "commonfunc/file_ops.h"
#include "tests/fixture.h"

#include <filesystem>

using FileOps = TestDir;

TEST_F(FileOps, CreateDirectoryTakesTheWholeNameOrReportsIt)
{
    write_file("f", "");
    const std::string part(200, 'n');
    const struct {
        const char* what;
        std::string path;
    } rows[] = {{"with its parents", "a b/c"},
                {"quotes and shell commands in the name", "it's;touch x"},
                {"a name like an option", "-p"},
                {"longer than the command buffer", part + "/" + part + "/" + part}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        EXPECT_EQ(QMRCreateDirectory(row.path.c_str()), 1);
        EXPECT_TRUE(std::filesystem::is_directory(dir + "/" + row.path));
    }
    testing::internal::CaptureStdout();
    EXPECT_EQ(QMRCreateDirectory("f"), 1);
    EXPECT_EQ(QMRCreateDirectory("f/x"), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Create Directory'f/x' failed!\n");
    EXPECT_EQ(QMRFileExists("x") + QMRFileExists("f/x") + QMRPathIsDirectory("f"), 0);
}

TEST_F(FileOps, DeleteAllFilesInDirectoryPrintsAndRunsTheWholeCommand)
{
    // The only `rm` in reach records its arguments, removes nothing, and fails for "a b" alone.
    std::filesystem::create_directories("a b/.hidden");
    write_file("a b/f", "kept");
    write_file("rm", "#!/bin/sh\nprintf '<%s>' \"$@\" >>" + dir + "/log\n[ \"$2\" != 'a b/f' ]\n");
    std::filesystem::permissions("rm", std::filesystem::perms::owner_all);
    ::setenv("PATH", dir.c_str(), 1);
    const std::string long_path(252, 'l');
    testing::internal::CaptureStdout();
    EXPECT_EQ(DeleteAllFilesInDirectory("a b"), 1);
    EXPECT_EQ(DeleteAllFilesInDirectory(long_path.c_str()), 1);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "rm cmd:: rm -rf 'a b'/*, DeleteAllFilesInDirectory\nrm cmd:: rm -rf " + long_path +
                  "/*, DeleteAllFilesInDirectory\n");
    EXPECT_EQ(DeleteAllFilesInDirectory(""), 0);
    EXPECT_EQ(read_file("a b/f"), "kept");
    EXPECT_EQ(read_file("log"), "<-rf><a b/f><-rf><" + long_path + "/*>");
    testing::internal::CaptureStdout();
    clear_directory_by_itself("a b"); // the same without it
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "rm cmd:: rm -rf 'a b'/*, DeleteAllFilesInDirectory\n");
    EXPECT_TRUE(std::filesystem::is_directory("a b/.hidden"));
    EXPECT_FALSE(std::filesystem::exists("a b/f"));
}
