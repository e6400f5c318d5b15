// Bytes that are no UTF-8, and in XML control characters, which it cannot hold in any form, become
// the replacement character: a report that shows a name a little wrong can still be read.
#include "lltcov/report/report_text.h"

#include "commonfunc/text.h"

#include <cstdio>
#include <cstdlib>
#include <cxxabi.h>
#include <memory>

namespace
{

constexpr const char* REPLACEMENT = "\xEF\xBF\xBD";

/// Bytes of the UTF-8 character that begins there; 0 when none does.
std::size_t utf8_length(const std::string& text, std::size_t at)
{
    const auto byte = [&](std::size_t i) {
        return at + i < text.size() ? static_cast<unsigned char>(text[at + i]) : 0U;
    };
    const unsigned first = byte(0);
    const std::size_t length = first < 0x80    ? 1
                               : first < 0xC2  ? 0
                               : first < 0xE0  ? 2
                               : first < 0xF0  ? 3
                               : first <= 0xF4 ? 4
                                               : 0;
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80) {
            return 0;
        }
    }
    // Longer than need be, a half of a surrogate pair, or beyond the last character.
    const bool wrong = (first == 0xE0 && byte(1) < 0xA0) || (first == 0xED && byte(1) > 0x9F) ||
                       (first == 0xF0 && byte(1) < 0x90) || (first == 0xF4 && byte(1) > 0x8F);
    return wrong ? 0 : length;
}

/// The text with each character that `replace` knows replaced by what it gives, when that is not
/// empty, and with bytes that are no character replaced.
template <typename Replace> std::string converted(const std::string& text, Replace replace)
{
    std::string out;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t length = utf8_length(text, at);
        const std::string other = length == 1 ? replace(text[at]) : "";
        out += length == 0 ? REPLACEMENT : !other.empty() ? other : text.substr(at, length);
        at += length == 0 ? 1 : length;
    }
    return out;
}

} // namespace

std::string json_string(const std::string& text)
{
    const auto escaped = [](char c) -> std::string {
        if (c == '"' || c == '\\') {
            return std::string("\\") + c;
        }
        char code[8] = "";
        if (is_control(c)) {
            std::snprintf(code, sizeof code, "\\u%04x", static_cast<unsigned>(c));
        }
        return code;
    };
    return "\"" + converted(text, escaped) + "\"";
}

std::string percent(const Rate& rate)
{
    if (rate.total == 0) {
        return "-";
    }
    // In thousandths, rounded, but kept off the ends that only nothing and all may have.
    std::size_t thousandths = (rate.hit * 1000 + rate.total / 2) / rate.total;
    thousandths = thousandths == 0 && rate.hit > 0 ? 1 : thousandths;
    thousandths = thousandths == 1000 && rate.hit < rate.total ? 999 : thousandths;
    return std::to_string(thousandths / 10) + "." + std::to_string(thousandths % 10);
}

std::string json_rates(const Rates& rates, const Rates& all, Counting counting)
{
    std::string out;
    for (const RateName& name : RATE_NAMES) {
        if (is_shown(name, all, counting)) {
            const Rate& rate = rates.*name.rate;
            out += (out.empty() ? "\"" : ", \"") + std::string(name.name) +
                   "\": {\"hit\": " + std::to_string(rate.hit) +
                   ", \"total\": " + std::to_string(rate.total) + "}";
        }
    }
    return out;
}

std::string xml_text(const std::string& text)
{
    return converted(text, [](char c) -> std::string {
        switch (c) {
        case '&':
            return "&amp;";
        case '<':
            return "&lt;";
        case '>':
            return "&gt;";
        case '"':
            return "&quot;";
        default:
            return is_control(c) ? REPLACEMENT : "";
        }
    });
}

std::string demangled(const std::string& symbol)
{
    if (symbol.compare(0, 2, "_Z") != 0) {
        return symbol; // "i" is a name in C, and the mangled form of a type
    }
    int status = 0;
    const std::unique_ptr<char, void (*)(void*)> name(
        abi::__cxa_demangle(symbol.c_str(), nullptr, nullptr, &status), std::free);
    return status == 0 ? name.get() : symbol;
}
