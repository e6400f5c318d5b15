// The lines that a diff adds or changes.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>

/// Line numbers of the new text, by path as the diff names it, without the "b/" of git and what
/// follows a tab.
using ChangedLines = std::map<std::string, std::set<std::uint32_t>>;

/// Reads a unified diff: the output of "git diff" or "diff -u", with any number of lines of
/// context. What is no part of one is passed over, as patch(1) does.
ChangedLines changed_lines(const std::string& diff);
