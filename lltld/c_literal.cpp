// Plain names come out as they go in; only quotes, backslashes, percent signs and control bytes
// change.
#include "lltld/c_literal.h"

#include "commonfunc/text.h"

std::string escape_for_c(const std::string& text)
{
    std::string out;
    for (const char c : text) {
        char octal[5];
        format_bounded(octal, "\\%03o", static_cast<unsigned char>(c));
        const bool special = c == '"' || c == '\\';
        out += is_control(c) ? std::string(octal) : (special ? "\\" : "") + std::string(1, c);
    }
    return out;
}

std::string escape_for_json_in_c(const std::string& text)
{
    std::string json;
    for (const char c : text) {
        char code[7];
        format_bounded(code, "\\u%04x", static_cast<unsigned char>(c));
        const bool control = c >= 0 && c < 32;
        const bool special = c == '"' || c == '\\';
        json += control ? std::string(code) : (special ? "\\" : "") + std::string(1, c);
    }
    return escape_for_c(json);
}

std::string escape_for_format_in_c(const std::string& text)
{
    std::string doubled;
    for (const char c : text) {
        doubled.append(c == '%' ? 2 : 1, c);
    }
    return escape_for_c(doubled);
}
