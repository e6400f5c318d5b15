// Texts as reports hold them: any bytes can be in a path or a symbol, but not in JSON or XML.
#pragma once

#include "lltcov/report/coverage.h"

#include <string>

/// The text as a JSON string with its quotes.
std::string json_string(const std::string& text);

/// The hit part in percent with one decimal, "-" when there is nothing to hit. Only when all is hit
/// it is 100.0, and 0.0 only when nothing is.
std::string percent(const Rate& rate);

/// `"NAME": {"hit": HIT, "total": TOTAL}` of each rate that the report shows, separated by ", ";
/// `all` are those of the whole report.
std::string json_rates(const Rates& rates, const Rates& all, Counting counting);

/// The text as content or attribute value of XML 1.0.
std::string xml_text(const std::string& text);

/// The function's name as it is written in C++; the assembler name where it is no C++ name.
std::string demangled(const std::string& symbol);
