// A hunk says in its head how many lines of both texts follow: only so a removed line "-- x", which
// the diff shows as "--- x", is not taken for the head of a file.
#include "lltcov/report/changed_lines.h"

#include "commonfunc/text.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace
{

constexpr char NEW_FILE[] = "+++ ";

/// What git has put into double quotes: backslashes before quotes and letters, octal numbers.
std::string unquoted(const std::string& text)
{
    constexpr std::string_view LETTERS = "abtnvfr";
    constexpr std::string_view MEANT = "\a\b\t\n\v\f\r";
    std::string plain;
    for (std::size_t at = 1; at < text.size() && text[at] != '"'; ++at) {
        if (text[at] != '\\' || at + 1 == text.size()) {
            plain += text[at];
        } else if (text[at + 1] >= '0' && text[at + 1] <= '3' && at + 3 < text.size()) {
            plain += static_cast<char>(std::strtol(text.substr(at + 1, 3).c_str(), nullptr, 8));
            at += 3;
        } else {
            const std::size_t letter = LETTERS.find(text[++at]);
            plain += letter == LETTERS.npos ? text[at] : MEANT[letter];
        }
    }
    return plain;
}

/// The name after "+++ "; empty for a file that is removed.
std::string path_in(std::string_view line)
{
    const std::string name(line.substr(sizeof NEW_FILE - 1));
    std::string path = begins_with(name, "\"") ? unquoted(name) : name.substr(0, name.find('\t'));
    if (!path.empty() && path.back() == '\r') {
        path.pop_back();
    }
    if (path == "/dev/null") {
        return "";
    }
    return begins_with(path, "b/") ? path.substr(2) : path;
}

/// Where a hunk is: lines that are still to come of both texts, the number of the next new one.
struct Hunk {
    unsigned long old_lines = 0;
    unsigned long new_lines = 0;
    std::uint32_t next = 0;
};

/// "@@ -FIRST,LINES +FIRST,LINES @@"; one line where the number is left out.
Hunk hunk_of(const std::string& line)
{
    Hunk hunk;
    const std::size_t plus = line.find(" +");
    if (!begins_with(line, "@@ -") || plus == line.npos) {
        return hunk;
    }
    unsigned old_first = 0;
    unsigned new_first = 0;
    hunk.old_lines = hunk.new_lines = 1;
    const int old_parts = std::sscanf(line.c_str(), "@@ -%u,%lu", &old_first, &hunk.old_lines);
    const int new_parts = std::sscanf(line.c_str() + plus, " +%u,%lu", &new_first, &hunk.new_lines);
    hunk.next = new_first;
    return old_parts >= 1 && new_parts >= 1 ? hunk : Hunk();
}

/// Takes a line of the hunk's body.
void read_line(Hunk& hunk, char kind, std::set<std::uint32_t>& lines)
{
    if (kind == '\\') { // "\ No newline at end of file"
        return;
    }
    if (kind == '+') {
        lines.insert(hunk.next);
    }
    if (kind != '+') {
        hunk.old_lines -= hunk.old_lines > 0 ? 1 : 0;
    }
    if (kind != '-') {
        hunk.new_lines -= hunk.new_lines > 0 ? 1 : 0;
        ++hunk.next;
    }
}

} // namespace

ChangedLines changed_lines(const std::string& diff)
{
    ChangedLines changed;
    std::string path;
    Hunk hunk;
    for (std::size_t at = 0; at < diff.size(); ++at) {
        const std::size_t end = std::min(diff.find('\n', at), diff.size());
        const std::string line = diff.substr(at, end - at);
        at = end;
        if (hunk.old_lines + hunk.new_lines > 0) {
            read_line(hunk, line.empty() ? ' ' : line[0], changed[path]);
        } else if (begins_with(line, NEW_FILE)) {
            path = path_in(line);
        } else {
            hunk = hunk_of(line);
        }
    }
    changed.erase("");
    return changed;
}
