// Everything that depends on the coverage stub mode, `stubmode`, side by side.
#pragma once

#include <cstdint>
#include <string>

/// How the counter array of a source is declared in the stub.
enum class ArrayForm {
    none,
    char_definition, ///< char x[n], whatever the custom type
    char_extern,
    word_definition, ///< unsigned int x[n]; unsigned long with a custom type
    word_extern,
};

/// The rules of one stub mode. They come from different places of the runtime's history, so they
/// do not agree with each other; each is what its reader expects.
struct CounterMode {
    ArrayForm array;     ///< the declaration
    bool packs_array;    ///< the declared array holds one bit per point, 32 to a word
    bool rounds_start;   ///< the next source's start index is rounded up to a multiple of 32
    int bytes_per_point; ///< stated at registration; 0 stands for bits in 32-bit words
    int recorded_mode;   ///< "coverage_counter_mode" of the project file
};

/// The rules of a stub mode; every number has some.
CounterMode counter_mode(int stubmode);

/// Elements of the declared counter array of a source with `instnum` points.
std::int64_t array_length(const CounterMode& mode, std::int32_t instnum);

/// By how much the running start index goes on behind a source with `instnum` points.
std::uint64_t start_advance(const CounterMode& mode, std::int32_t instnum);

/// Bytes of the counter buffer stated at registration.
int registered_size(const CounterMode& mode, std::int32_t instnum);

/// The declaration line of the counter array of stem `name`; empty for `ArrayForm::none`.
std::string array_line(const CounterMode& mode, const char* name, std::int64_t length,
                       bool custom_type);
