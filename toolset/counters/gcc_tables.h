// The counters and tables of a text of gcc: collected as they stand in it, then understood.
#pragma once

#include "toolset/counters/counter_text.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

/// Counters of one function and kind, as the text defines them.
struct CounterDefinition {
    std::uint32_t size = 0;      ///< bytes
    std::uint32_t alignment = 8; ///< bytes
    std::uint32_t offset = TextPiece::NONE;
};

/// The parts of a text that have to do with counters.
struct GccParts {
    std::unordered_map<std::string_view, CounterDefinition> definitions;        ///< by name
    std::unordered_map<std::string_view, std::vector<std::string_view>> tables; ///< words, by name
    std::vector<std::pair<std::size_t, std::string_view>> references; ///< pieces and their counters
};

/// True for the name of counters: "__gcov0.main", the kind as digits.
bool is_counter(std::string_view name);

/// True for the name of a table: "__gcov_.main", or ".LPBX0" with the prefix of local labels ("$"
/// on some machines).
bool is_table(std::string_view name);

/// A decimal number, negative ones as their two's complement.
std::uint32_t number_of(std::string_view digits);

/// Reads the tables into the record and gives every counter its place: in the record, and in the
/// pieces that refer to it.
void place_counters(GccParts& parts, CounterText& out);
