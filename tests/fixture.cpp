#include "tests/fixture.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <unistd.h>

void TestDir::SetUp()
{
    std::string name = std::filesystem::temp_directory_path() / "lltwrapper-test-XXXXXX";
    ASSERT_NE(::mkdtemp(&name[0]), nullptr);
    dir = std::filesystem::canonical(name);
    std::filesystem::current_path(dir);
    const char* known = std::getenv("PATH");
    const std::string path = known != nullptr ? known : "/usr/bin:/bin";
    ::clearenv();
    ::setenv("PATH", path.c_str(), 1);
    ::setenv("TZ", "UTC", 1);
}

void TestDir::TearDown()
{
    std::filesystem::current_path("/");
    if (HasFailure()) {
        std::cout << "data of this test: " << dir << "\n";
    } else {
        std::filesystem::remove_all(dir);
    }
}

void write_file(const std::string& path, const std::string& text)
{
    std::ofstream(path, std::ios::binary) << text;
}

std::string read_file(const std::string& path)
{
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}
