// Files replaced by others, among killed and parallel writers.
#include "commonfunc/file_replace.h"
#include "tests/fixture.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using FileReplace = TestDir;

TEST_F(FileReplace, WhateverAKilledWriterLeftTheFileIsNewKeepsItsModeAndNothingStays)
{
    const struct {
        const char* what;
        std::string prepare; ///< of the file "t" and what lies beside
        int mode;
    } rows[] = {
        {"nothing there", "", 0640},
        {"an old file", "echo old >t; chmod 2604 t", 02604},
        {"a part of a longer file", "seq 999 >.lltwrapper-t; echo old >t; chmod 600 t", 0600},
        {"unreadable leftovers", "echo x >.lltwrapper-t; chmod 0 .lltwrapper-t", 0640},
        {"a link to elsewhere", "echo kept >victim; ln -s victim .lltwrapper-t", 0640},
        {"another name of a file", "echo kept >victim; ln victim .lltwrapper-t", 0640},
        {"a pipe", "mkfifo .lltwrapper-t", 0640},
    };
    const mode_t mask = ::umask(027);
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        ASSERT_EQ(std::system(("rm -rf t .ll* victim; " + row.prepare).c_str()), 0);
        EXPECT_EQ(replace_file("t", "new"), Writing::done);
        EXPECT_EQ(read_file("t"), "new");
        struct stat info = {};
        EXPECT_EQ(::lstat("t", &info), 0);
        EXPECT_EQ(info.st_mode & 07777U, static_cast<mode_t>(row.mode));
        EXPECT_FALSE(std::filesystem::exists(std::filesystem::symlink_status(".lltwrapper-t")));
        EXPECT_TRUE(read_file("victim").empty() || read_file("victim") == "kept\n");
    }
    ::umask(mask);
}

TEST_F(FileReplace, ParallelWritersLeaveOneWholeFile)
{
    for (char writer = 'a'; writer < 'i'; ++writer) {
        if (::fork() == 0) {
            bool done = true;
            for (int i = 0; i < 100; ++i) {
                const std::string text(20000U + 9U * static_cast<unsigned char>(writer), writer);
                done = replace_file("t", text) == Writing::done && done;
            }
            ::_exit(done ? 0 : 1);
        }
    }
    for (int status = 0; ::wait(&status) > 0;) {
        EXPECT_EQ(status, 0);
        const std::string text = read_file("t");
        EXPECT_EQ(text, std::string(20000U + 9U * static_cast<unsigned char>(text[0]), text[0]));
    }
    EXPECT_FALSE(std::filesystem::exists(".lltwrapper-t"));
}

TEST_F(FileReplace, AFailureKeepsTheOldFileAndNamesTheCure)
{
    write_file("t", "old");
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit = {};
    ::getrlimit(RLIMIT_FSIZE, &limit);
    const rlimit small = {5000, limit.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &small);
    testing::internal::CaptureStderr();
    EXPECT_EQ(replace_file("t", std::string(5001, 'x')), Writing::failed);
    EXPECT_EQ(replace_file("no/t", ""), Writing::not_opened);
    const std::string said = testing::internal::GetCapturedStderr();
    ::setrlimit(RLIMIT_FSIZE, &limit);
    std::signal(SIGXFSZ, SIG_DFL);
    EXPECT_EQ(read_file("t"), "old");
    EXPECT_FALSE(std::filesystem::exists(".lltwrapper-t"));
    EXPECT_EQ(said,
              "lltwrapper: cannot write 't': File too large; raise the limit on the size of files "
              "(ulimit -f)\nlltwrapper: cannot write 'no/t': No such file or directory; check that "
              "its directory is there, and try again\n");
    testing::internal::CaptureStderr();
    const auto give_up = [](std::FILE* file) {
        std::fputs("part", file);
        errno = ENOSPC;
        return false;
    };
    EXPECT_EQ(replace_file("t", give_up), Writing::failed);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "lltwrapper: cannot write 't': No space left on device; make room there\n");
    EXPECT_EQ(read_file("t"), "old");
    EXPECT_FALSE(std::filesystem::exists(".lltwrapper-t"));
}

TEST_F(FileReplace, AnotherUsersFileKeepsItsOwnerOrTheLineSaysWhatToDo)
{
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root has files of two users";
    }
    write_file("t", "user");
    ASSERT_EQ(std::system("chown 65534:65534 . t; chmod 751 t; mkdir r; touch r/t"), 0);
    EXPECT_EQ(replace_file("t", "root"), Writing::done);
    struct stat info = {};
    ::stat("t", &info);
    EXPECT_EQ(info.st_uid + info.st_gid, 2U * 65534U);
    EXPECT_EQ(info.st_mode & 07777U, 0751U);
    const pid_t child = ::fork();
    if (child == 0) {
        const bool is_user = ::freopen("said", "w", stderr) != nullptr && ::setuid(65534) == 0;
        ::_exit(is_user && replace_file(dir + "/r/t", "x") == Writing::not_opened ? 0 : 1);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(read_file("said"),
              "lltwrapper: cannot write '" + dir +
                  "/r/t': Permission denied; it belongs to user 0: run 'chown -R "
                  "65534 " +
                  dir + "/r/' as root\n");
}
