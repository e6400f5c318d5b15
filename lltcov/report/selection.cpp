// A pattern is one of a shell, but its "*" takes "/" too. It names sources relative to the project,
// or by their absolute paths, and directories with all that is in them; one without a slash names
// them in any directory, unless it begins with "./". Sources are searched for marks when they are
// shown; a source that has changed since its compile is not shown at all.
#include "lltcov/report/selection.h"

#include "commonfunc/file_io.h"
#include "commonfunc/message.h"
#include "commonfunc/text.h"
#include "lltcov/common/project.h"
#include "lltcov/report/report_text.h"

#include <algorithm>
#include <cstdlib>
#include <fnmatch.h>
#include <iterator>
#include <string_view>
#include <utility>

namespace
{

constexpr const char* INCLUDE = "--include";
constexpr const char* EXCLUDE = "--exclude";
constexpr const char* NO_MARKS = "--no-markers";
constexpr const char* NO_THROWS = "--exclude-throw-branches";
constexpr const char* LEAST_LINES = "--fail-under-line";
constexpr const char* LEAST_BRANCHES = "--fail-under-branch";

using Words = std::vector<std::string>;

Words joined(Words words, const Words& more)
{
    words.insert(words.end(), more.begin(), more.end());
    return words;
}

bool matches(const std::string& pattern, const std::string& path)
{
    return ::fnmatch(pattern.c_str(), path.c_str(), 0) == 0 ||
           ::fnmatch((pattern + "/*").c_str(), path.c_str(), 0) == 0;
}

/// True when a pattern names the source; `shown` is its path in the project. The directories above
/// the project are not compared with a pattern that has no slash.
bool is_named(const Words& patterns, const std::string& path, const std::string& shown)
{
    const std::string names = shown == path ? path : "/" + shown;
    return std::any_of(patterns.begin(), patterns.end(), [&](const std::string& pattern) {
        return matches(pattern, path) || matches(pattern, shown) ||
               (pattern.find('/') == pattern.npos && matches("*/" + pattern, names));
    });
}

/// Patterns without a slash at their end; those with "./" before them are of the directory alone.
Words patterns_of(const CommandLine& line, const char* option, const std::string& directory)
{
    Words patterns = line.values(option);
    for (std::string& pattern : patterns) {
        if (pattern == "." || begins_with(pattern, "./")) {
            pattern.replace(0, 1, directory);
        }
        while (pattern.size() > 1 && pattern.back() == '/') {
            pattern.pop_back();
        }
        if (pattern.empty()) {
            throw UsageError(std::string(option) + " needs a pattern");
        }
    }
    return patterns;
}

std::optional<double> percentage_of(const CommandLine& line, const char* option)
{
    if (!line.has(option)) {
        return std::nullopt;
    }
    const std::string text = line.value(option);
    char* end = nullptr;
    const double number = std::strtod(text.c_str(), &end);
    if (text.empty() || *end != '\0' || !(number >= 0 && number <= 100)) {
        throw UsageError(std::string(option) + " needs a number from 0 to 100");
    }
    return number;
}

enum class Mark { line, start, stop };

/// The marks of the line, for branches or for all, in their order.
std::vector<Mark> marks_in(std::string_view line, std::string_view kind)
{
    constexpr std::string_view MIDDLE = "_EXCL_";
    constexpr std::string_view BEGINNINGS[] = {"LCOV", "GCOV", "GCOVR"};
    constexpr std::pair<std::string_view, Mark> ENDS[] = {
        {"LINE", Mark::line}, {"START", Mark::start}, {"STOP", Mark::stop}};
    std::vector<Mark> marks;
    for (std::size_t at = line.find(MIDDLE); at != line.npos; at = line.find(MIDDLE, at + 1)) {
        const std::string_view before = line.substr(0, at);
        const std::string_view after = line.substr(at + MIDDLE.size());
        const bool begins =
            std::any_of(std::begin(BEGINNINGS), std::end(BEGINNINGS),
                        [&](std::string_view beginning) { return ends_with(before, beginning); });
        for (const auto& [end, mark] : ENDS) {
            if (begins && after.substr(0, kind.size()) == kind &&
                after.substr(kind.size(), end.size()) == end) {
                marks.push_back(mark);
            }
        }
    }
    return marks;
}

/// Follows the marks of one kind from line to line.
class Marks
{
public:
    Marks(std::string_view kind, std::set<std::uint32_t>& lines) : kind_(kind), lines_(lines) {}

    void read(std::string_view line, std::uint32_t number)
    {
        bool is_marked = false;
        for (const Mark mark : marks_in(line, kind_)) {
            is_marked = is_marked || mark == Mark::line || (mark == Mark::stop && start_ == number);
            if (mark == Mark::start && start_ == 0) {
                start_ = number;
            } else if (mark == Mark::stop) {
                start_ = 0;
            }
        }
        if (start_ != 0 || is_marked) {
            lines_.insert(number);
        }
    }

    std::uint32_t start() const { return start_; }

private:
    std::string_view kind_;
    std::set<std::uint32_t>& lines_;
    std::uint32_t start_ = 0; ///< of the section that is read; 0 outside
};

template <typename Map, typename Leaves> void erase_if(Map& map, Leaves leaves)
{
    for (auto entry = map.begin(); entry != map.end();) {
        entry = leaves(*entry) ? map.erase(entry) : std::next(entry);
    }
}

void leave_out(SourceCoverage& source, const ExcludedLines& excluded)
{
    if (excluded.all.empty() && excluded.branches.empty()) {
        return;
    }
    erase_if(source.lines, [&](const auto& line) { return excluded.all.count(line.first) != 0; });
    erase_if(source.functions,
             [&](const auto& function) { return excluded.all.count(function.second.line) != 0; });
    erase_if(source.blocks, [&](const auto& line) {
        return excluded.all.count(line.first) + excluded.branches.count(line.first) != 0;
    });
}

/// Leaves out the branches that only an exception takes; each call that may throw has one.
void leave_out_throws(SourceCoverage& source)
{
    for (auto& line : source.blocks) {
        for (auto& function : line.second) {
            std::vector<Branch>& branches = function.second.branches;
            branches.erase(std::remove_if(branches.begin(), branches.end(),
                                          [](const Branch& branch) { return branch.is_throw; }),
                           branches.end());
        }
        erase_if(line.second, [](const auto& function) {
            return function.second.branches.empty() && function.second.conditions.empty();
        });
    }
    erase_if(source.blocks, [](const auto& line) { return line.second.empty(); });
}

/// False with a message when less than the wanted part was hit.
bool reaches(const Rate& rate, const char* name, const std::optional<double>& wanted,
             const char* option)
{
    const auto hit = static_cast<double>(rate.hit);
    const auto total = static_cast<double>(rate.total);
    const double slack =
        total * 1e-9; // a percentage that is met exactly may have no exact binary form
    if (!wanted || hit * 100 >= *wanted * total - slack) {
        return true;
    }
    warn("%s of the %s are hit (%zu of %zu), less than %s %g", (percent(rate) + " %").c_str(), name,
         rate.hit, rate.total, option, *wanted);
    return false;
}

} // namespace

std::vector<std::string> with_selection_flags(std::vector<std::string> flags)
{
    return joined(std::move(flags), {NO_MARKS, NO_THROWS});
}

std::vector<std::string> with_selection_options(std::vector<std::string> options)
{
    return joined(std::move(options), {INCLUDE, EXCLUDE, LEAST_LINES, LEAST_BRANCHES});
}

bool takes_selection(const CommandLine& line)
{
    const Words options = with_selection_options(with_selection_flags({}));
    return std::any_of(options.begin(), options.end(),
                       [&](const std::string& option) { return line.has(option); });
}

ExcludedLines excluded_lines(const std::string& text)
{
    ExcludedLines excluded;
    Marks all("", excluded.all);
    Marks branches("BR_", excluded.branches);
    std::uint32_t number = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        const std::string_view line(text.data() + at, end - at);
        ++number;
        all.read(line, number);
        branches.read(line, number);
        at = end;
    }
    excluded.unended = all.start() != 0 ? all.start() : branches.start();
    return excluded;
}

Selection::Selection(const CommandLine& line, std::string directory)
    : directory_(std::move(directory)), included_(patterns_of(line, INCLUDE, directory_)),
      excluded_(patterns_of(line, EXCLUDE, directory_)), heeds_marks_(!line.has(NO_MARKS)),
      has_throws_(!line.has(NO_THROWS)), least_lines_(percentage_of(line, LEAST_LINES)),
      least_branches_(percentage_of(line, LEAST_BRANCHES))
{
}

void Selection::apply(Coverage& coverage, Findings& findings) const
{
    erase_if(coverage, [&](auto& source) {
        if (!is_selected(source.first)) {
            return true;
        }
        if (heeds_marks_) {
            leave_out(source.second, excluded_in(source.first, findings));
        }
        if (!has_throws_) {
            leave_out_throws(source.second);
        }
        return false;
    });
}

bool Selection::has_selected(const Coverage& coverage) const
{
    if (coverage.empty() && !(included_.empty() && excluded_.empty())) {
        warn("no source is selected; look at --include and --exclude");
        return false;
    }
    return true;
}

bool Selection::is_reached(const Coverage& coverage) const
{
    const Rates rates = rates_of(coverage);
    const bool has_lines = reaches(rates.lines, "lines", least_lines_, LEAST_LINES);
    const bool has_branches = reaches(rates.branches, "branches", least_branches_, LEAST_BRANCHES);
    return has_lines && has_branches;
}

bool Selection::is_selected(const std::string& path) const
{
    const std::string shown = shown_path(path, directory_);
    return (included_.empty() || is_named(included_, path, shown)) &&
           !is_named(excluded_, path, shown);
}

const ExcludedLines& Selection::excluded_in(const std::string& path, Findings& findings) const
{
    const auto [place, is_new] = marks_.emplace(path, ExcludedLines());
    if (is_new) {
        std::string text;
        read_whole_file(path, text);
        place->second = excluded_lines(text);
        if (place->second.unended != 0) {
            findings.add(
                "unended exclusions",
                path + ":" + std::to_string(place->second.unended) +
                    ": what starts here is not stopped: all that follows is left out; add the mark of its end");
        }
    }
    return place->second;
}
