// Files among the dumps that are no dumps: they are named and left out, and the others count.
#include "tests/lltcov/project_fixture.h"

#include <sys/resource.h>

namespace
{

/// Allows the process a limit for its memory, while it lives; not under sanitizers, which map more.
class MemoryLimit
{
public:
    explicit MemoryLimit([[maybe_unused]] rlim_t bytes)
    {
        ::getrlimit(RLIMIT_AS, &before_);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
        const struct rlimit limit = {bytes, before_.rlim_max};
        EXPECT_EQ(::setrlimit(RLIMIT_AS, &limit), 0);
#endif
    }
    ~MemoryLimit()
    {
        ::setrlimit(RLIMIT_AS, &before_);
    }
    MemoryLimit(const MemoryLimit&) = delete;
    MemoryLimit& operator=(const MemoryLimit&) = delete;

private:
    struct rlimit before_ = {};
};

} // namespace

TEST_F(ProjectDataTest, WhatIsNoDumpIsNamedAndLeftOutInLittleMemoryAndTime)
{
    const std::string area = dir + "/liba/codemeasure";
    const std::string gib = std::to_string((1U << 30) - 8);
    const struct {
        const char* kind;
        std::function<void(const std::string& path)> make;
        const char* says;
    } cases[] = {
        {"damaged dumps", [](const auto& path) { std::filesystem::create_directory(path); },
         "it is no regular file"},
        {"damaged dumps", [](const auto& path) { ::mkfifo(path.c_str(), 0666); },
         "it is no regular file"},
        {"damaged dumps",
         [](const auto& path) { std::filesystem::create_symlink("/dev/zero", path); },
         "it is no regular file"},
        {"damaged dumps", [](const auto& path) { std::filesystem::create_symlink("gone", path); },
         "No such file or directory"},
        {"damaged dumps", [](const auto& path) { write_file(path, "lltcov 2\n"); },
         ".lltcov:1: the file is cut after this line"},
        {"damaged dumps",
         [](const auto& path) {
             write_file(path, "lltcov 2\n");
             std::filesystem::resize_file(path, 5'000'000'000);
         },
         ".lltcov:1: the file is larger than any dump"},
        {"sources without records",
         [&](const auto& path) {
             write_file(path, "lltcov 2\nbuid Q1\narea " + area + "\norder little\nfile 0 NEW.c " +
                                  gib + "\ncounts 1073741824\n");
             std::filesystem::resize_file(path, std::filesystem::file_size(path) + (1U << 30));
         },
         "counts 'NEW'"},
        {"damaged dumps",
         [&](const auto& path) {
             std::string text = "lltcov 2\nbuid Q1\narea " + area + "\norder little\n";
             for (int i = 0; i < 1'200'000; ++i) {
                 text += "file 0 S.c 0\n";
             }
             write_file(path, text + "counts 8\n" + word(1));
         },
         "takes more memory than there is"},
    };
    for (const auto& bad : cases) {
        std::filesystem::remove_all(dir + "/runs");
        add_dump(area, "Q1", one_run_);
        bad.make(dir + "/runs/bad.lltcov");
        const MemoryLimit limit(150U << 20);
        EXPECT_EQ(counts(), "3 4 ") << bad.says;
        EXPECT_TRUE(findings_.has_problems());
#if !defined(__SANITIZE_ADDRESS__)
        EXPECT_NE(said(bad.kind).find(bad.says), std::string::npos) << said(bad.kind);
#endif
    }
}
