// gcc.specs reads LLTCC_NOTES and LLTCC_EXCLUDE; it has to add a text to each, so that the notes
// are a file whose number ends in 0, and one more expression is excluded, which fits no source.
#include "toolset/lltcc/handover.h"

#include "commonfunc/env.h"
#include "commonfunc/file_ops.h"

#include <cstdlib>
#include <fcntl.h>
#include <stdexcept>
#include <unistd.h>
#include <vector>

namespace
{

constexpr const char RECORD[] = "LLTCC_RECORD";
constexpr const char NOTES[] = "LLTCC_NOTES";
constexpr const char EXCLUDE[] = "LLTCC_EXCLUDE";
constexpr const char TROUBLE[] = "LLTCC_TROUBLE";
constexpr const char CACHE_KEY[] = "CCACHE_EXTRAFILES";

std::string path_of(int file)
{
    return "/proc/" + std::to_string(::getpid()) + "/fd/" + std::to_string(file);
}

/// A file without a name whose descriptor ends in 0.
int notes_file()
{
    const int file = anonymous_file("");
    for (int number = 10; file >= 0; number += 10) {
        if (::fcntl(number, F_GETFD) < 0) {
            const int moved = ::dup3(file, number, O_CLOEXEC);
            ::close(file);
            return moved;
        }
    }
    return file;
}

} // namespace

Handover::Handover(const Record& begun, const std::string& excluded)
    : notes_(notes_file()), trouble_(anonymous_file("")),
      key_(anonymous_file(to_bytes(begun) + excluded))
{
    if (notes_ < 0 || trouble_ < 0 || key_ < 0) {
        throw std::runtime_error("no more files can be opened");
    }
    const auto set = [&](const char* name, const std::string& value) {
        environment_.push_back(std::string(name) + "=" + value);
    };
    const std::string notes = path_of(notes_);
    set(RECORD, to_bytes(begun));
    set(NOTES, notes.substr(0, notes.size() - 1));
    set(EXCLUDE, excluded);
    set(TROUBLE, path_of(trouble_));
    const std::string others = env_text(CACHE_KEY);
    set(CACHE_KEY,
        (others.empty() ? "" : others + ":") + program_directory() + "/lltcc:" + path_of(key_));
    // What sends compiles elsewhere, also in front of a cache or under the compiler's name.
    set("CCACHE_PREFIX", "");
    set("DISTCC_HOSTS", "localhost");
    set("ICECC", "no");
}

Handover::~Handover()
{
    ::close(notes_);
    ::close(trouble_);
    ::close(key_);
}

bool is_within_compile()
{
    return std::getenv(RECORD) != nullptr;
}

HandedOver handed_over()
{
    HandedOver out;
    out.begun = read_records(env_text(RECORD)).at(0);
    out.notes = env_text(NOTES) + "0";
    out.trouble = env_text(TROUBLE);
    ::unsetenv(RECORD); // what this process starts is no part of the compile
    return out;
}
