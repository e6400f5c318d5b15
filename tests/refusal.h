// What readers say of texts that they refuse.
#pragma once

#include "commonfunc/text_lines.h"

#include <string>

/// What the reader throws at the text, "LINE: " before it where it names one; empty when it reads
/// it.
template <typename Read> std::string refusal(Read read, const std::string& text)
{
    try {
        read(text);
    } catch (const FormatError& error) {
        return std::to_string(error.line) + ": " + error.what();
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "";
}
