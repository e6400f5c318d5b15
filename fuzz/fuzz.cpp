// The oracles print both values on standard error and abort, which a fuzzer takes for a crash.
#include "fuzz/fuzz.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <unistd.h>

namespace
{

std::string shown(const std::string& text)
{
    std::string out;
    for (const char c : text) {
        char code[8];
        std::snprintf(code, sizeof code, c >= ' ' && c != '\\' && c < 127 ? "%c" : "\\x%02x",
                      static_cast<unsigned char>(c));
        out += code;
    }
    return out;
}

std::string joined(const fuzz::Texts& texts)
{
    std::string out;
    for (const std::string& text : texts) {
        out += std::to_string(text.size()) + ":" + text + " ";
    }
    return out;
}

} // namespace

namespace fuzz
{

char Input::byte()
{
    const char next = rest_.empty() ? '\0' : rest_[0];
    rest_.remove_prefix(rest_.empty() ? 0 : 1);
    return next;
}

unsigned Input::number(unsigned limit)
{
    return static_cast<unsigned char>(byte() - '0') % limit;
}

std::string Input::field(char end)
{
    const std::string text(rest_.substr(0, rest_.find(end)));
    rest_.remove_prefix(std::min(text.size() + 1, rest_.size()));
    return text;
}

void same(const char* what, const std::string& expected, const std::string& actual)
{
    if (expected != actual) {
        std::fprintf(stderr, "\nfuzz: %s\n  expected %s\n  actual   %s\n", what,
                     shown(expected).c_str(), shown(actual).c_str());
        std::abort();
    }
}

void same(const char* what, long long expected, long long actual)
{
    if (expected != actual) {
        same(what, std::to_string(expected), std::to_string(actual));
    }
}

void same(const char* what, const Texts& expected, const Texts& actual)
{
    if (expected != actual) {
        same(what, joined(expected), joined(actual));
    }
}

Buffer::~Buffer()
{
    same("guards of a buffer", GUARD + GUARD,
         bytes_.substr(0, GUARD.size()) + bytes_.substr(GUARD.size() + size()));
}

const std::string& scratch()
{
    static const std::string directory = [] {
        const bool has_memory = ::access("/dev/shm", W_OK) == 0; // much faster than a disk
        std::string path = has_memory ? "/dev/shm/fuzz-XXXXXX" : "/tmp/fuzz-XXXXXX";
        holds("a directory can be made", ::mkdtemp(path.data()) != nullptr);
        std::filesystem::current_path(path);
        holds("output can be kept", std::freopen("output", "w", stdout) != nullptr);
        return path;
    }();
    // After the directory's name, which goes later then.
    [[maybe_unused]] static const int once =
        std::atexit([] { std::filesystem::remove_all(scratch()); });
    return directory;
}

std::string printed()
{
    std::fflush(stdout);
    const std::string text = read_file("output");
    std::rewind(stdout);
    holds("output can be cleared", ::ftruncate(::fileno(stdout), 0) == 0);
    return text;
}

void write_file(const std::string& path, const std::string& text)
{
    holds("a file can be written",
          !!std::ofstream(path, std::ios::binary)
                .write(text.data(), static_cast<std::streamsize>(text.size()))
                .flush());
}

std::string read_file(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void set_environment(const std::string& name, const std::string& value)
{
    static std::map<std::string, std::array<char, 512>> entries; // setenv would never free them
    std::array<char, 512>& entry = entries[name];
    std::snprintf(entry.data(), entry.size(), "%s=%.255s", name.c_str(), value.c_str());
    ::putenv(entry.data());
}

bool is_inside(std::string_view part, std::string_view whole)
{
    const std::less_equal<> order;
    return part.empty() || (order(whole.data(), part.data()) &&
                            order(part.data() + part.size(), whole.data() + whole.size()));
}

} // namespace fuzz
