// What a text of clang says of its counters: the names of the functions in profiles, and the tables
// that stand beside the counters.
#pragma once

#include "toolset/counters/counter_text.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

/// Counters of one function and the words of their table, as the text defines them.
struct ClangCounters {
    std::string_view function; ///< what follows "__profc_"
    std::uint32_t size = 0;    ///< bytes
    std::uint32_t alignment = 8;
    std::vector<std::pair<std::string_view, std::string_view>> table; ///< directives, operands
};

/// The parts of a text that have to do with counters.
struct ClangParts {
    std::vector<ClangCounters> counters;                              ///< in the text's order
    std::unordered_map<std::string_view, std::size_t> index;          ///< by function
    std::vector<std::pair<std::size_t, std::string_view>> references; ///< pieces, functions
    std::string names; ///< content of the section of names
};

/// A number that may be negative or hexadecimal, as 64 bits.
std::uint64_t clang_number(std::string_view text);

/// The bytes of an assembler string, with its quotes.
std::string string_bytes(std::string_view quoted);

/// Reads the tables into the record and gives every counter its place: in the record, and in the
/// pieces that refer to it.
void place_clang_counters(const ClangParts& parts, std::string_view text, CounterText& out);
