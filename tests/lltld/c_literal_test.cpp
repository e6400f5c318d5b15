// Texts that come from outside, inside a C string literal.
#include "lltld/c_literal.h"

#include <gtest/gtest.h>

TEST(CLiteral, EscapesTextForCAndJsonAndFormats)
{
    const struct {
        const char* what;
        std::string text, c, json, format;
    } rows[] = {
        {"plain", "a b/\xC4", "a b/\xC4", "a b/\xC4", "a b/\xC4"},
        {"percent", "5%", "5%", "5%", "5%%"},
        {"quote", R"(")", R"(\")", R"(\\\")", R"(\")"},
        {"backslash", R"(\)", R"(\\)", R"(\\\\)", R"(\\)"},
        {"line end", "\n", R"(\012)", R"(\\u000a)", R"(\012)"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        EXPECT_EQ(escape_for_c(row.text), row.c);
        EXPECT_EQ(escape_for_json_in_c(row.text), row.json);
        EXPECT_EQ(escape_for_format_in_c(row.text), row.format);
    }
}
