// What fuzz targets stand on: taking an input apart, comparing with a model, and places for what
// the tested functions read and write.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Runs one input; each target defines it. It ends the process when a promise does not hold.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace fuzz
{

using Texts = std::vector<std::string>;

/// Takes an input apart from its front. Beyond its end everything is empty.
class Input
{
public:
    Input(const std::uint8_t* data, std::size_t size)
        : rest_(reinterpret_cast<const char*>(data), size)
    {
    }

    bool empty() const { return rest_.empty(); }
    char byte();                     ///< the next byte; NUL at the end
    unsigned number(unsigned limit); ///< of the next byte, below `limit`: 0 for "0", 1 for "1"
    std::string field(char end);     ///< the bytes before the next `end`, which goes too
    std::string line() { return field('\n').c_str(); } ///< up to its first NUL
    std::string rest() const { return std::string(rest_); }

private:
    std::string_view rest_;
};

/// Ends the process, showing both values, when they differ.
void same(const char* what, const std::string& expected, const std::string& actual);
void same(const char* what, long long expected, long long actual);       ///< likewise
void same(const char* what, const Texts& expected, const Texts& actual); ///< likewise

/// Ends the process when this does not hold.
inline void holds(const char* what, bool condition)
{
    same(what, 1, condition ? 1 : 0);
}

/// A buffer of the caller between guards, filled with '#'.
class Buffer
{
public:
    explicit Buffer(std::size_t size) : bytes_(GUARD + std::string(size, '#') + GUARD) {}
    ~Buffer();
    Buffer(const Buffer&) = delete;
    Buffer& operator=(const Buffer&) = delete;

    char* data() { return &bytes_[GUARD.size()]; }
    std::string bytes() const { return bytes_.substr(GUARD.size(), size()); } ///< all of it

private:
    std::size_t size() const { return bytes_.size() - 2 * GUARD.size(); }

    inline static const std::string GUARD = "[untouched]";
    std::string bytes_;
};

/// A directory of the process, the current one from the first call on and removed at its end.
/// Standard output goes to a file in it.
const std::string& scratch();

/// What was printed on standard output since the last call.
std::string printed();

/// Replaces the file.
void write_file(const std::string& path, const std::string& text);

/// The content of the file; empty when there is none.
std::string read_file(const std::string& path);

/// Sets an environment variable, at most 255 bytes of the value.
void set_environment(const std::string& name, const std::string& value);

/// True when all bytes of the part are bytes of the whole, in the same place of memory.
bool is_inside(std::string_view part, std::string_view whole);

} // namespace fuzz
