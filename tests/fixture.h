// What every test stands on: an empty directory of its own and a scrubbed environment.
#pragma once

#include <gtest/gtest.h>

#include <string>

/// Runs each test in a new empty directory with nothing in the environment but PATH and TZ=UTC.
/// The directory is removed after a success, and kept and named after a failure.
class TestDir : public ::testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;

    std::string dir; ///< absolute path of the directory, the current one while the test runs
};

/// Creates or replaces the file.
void write_file(const std::string& path, const std::string& text);

/// The whole content of the file, empty when it cannot be read.
std::string read_file(const std::string& path);
