// An assembly text in which the compiler counts, taken apart: what its counters are, and the text
// without the compiler's own tables, so that the counters can be put into one array of our own.
#pragma once

#include "contract/record.h"

#include <cstdint>
#include <deque>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

/// Why a source is compiled without coverage after all; a text for the user.
class NotInstrumentable : public std::runtime_error
{
    using std::runtime_error::runtime_error;
};

/// A part of the text, and the place in the array that follows it.
struct TextPiece {
    static constexpr std::uint32_t NONE = UINT32_MAX;

    std::string_view text;
    std::uint32_t offset = NONE; ///< bytes from the array's start, or NONE
};

/// The text with its counters taken out. `pieces` are views into the text that was read.
struct CounterText {
    std::vector<TextPiece> pieces;
    std::deque<std::string> own_texts; ///< of pieces that do not stand in the text
    RecordedCounters record;

    /// Adds a part of the text as it stands.
    void keep(std::string_view text)
    {
        if (!text.empty()) {
            pieces.push_back({text});
        }
    }
};

/// Larger arrays are taken for a mistake, in bytes.
inline constexpr std::uint32_t MAX_ARRAY_BYTES = 1U << 30;

/// Bytes to which stubs align arrays: no counter may want more.
inline constexpr std::uint32_t ARRAY_ALIGNMENT = 64;

/// Takes apart a text of `gcc -fprofile-arcs -ftest-coverage -fprofile-info-section`. Throws
/// `NotInstrumentable` when something in it is not understood.
CounterText read_gcc_text(std::string_view text);

/// The same for clang with the options of `CLANG_OPTIONS`.
CounterText read_clang_text(std::string_view text);

/// The options that clang is called with, a null pointer at the end. They are for compilations
/// only: in a link they would bring clang's own runtime.
extern const char* const CLANG_OPTIONS[];

/// The text with "ARRAY+OFFSET" where the counters stood; `array` is the whole name.
std::string with_array(const CounterText& text, const std::string& array);
