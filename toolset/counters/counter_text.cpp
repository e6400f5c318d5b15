// One allocation for the whole text: C++ sources give megabytes of assembly.
#include "toolset/counters/counter_text.h"

#include <cstddef>

std::string with_array(const CounterText& text, const std::string& array)
{
    std::size_t size = 0;
    for (const TextPiece& piece : text.pieces) {
        size += piece.text.size() + array.size() + 12;
    }
    std::string out;
    out.reserve(size);
    for (const TextPiece& piece : text.pieces) {
        out += piece.text;
        if (piece.offset != TextPiece::NONE) {
            out += array;
            out += '+';
            out += std::to_string(piece.offset);
        }
    }
    return out;
}
