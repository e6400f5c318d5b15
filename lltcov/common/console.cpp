// Colours and the progress line are for people: they go to terminals only.
#include "lltcov/common/console.h"

#include "commonfunc/env.h"
#include "commonfunc/message.h"
#include "commonfunc/text.h"

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <unistd.h>
#include <utility>

namespace
{

/// Lines of one kind that are printed.
constexpr std::size_t MAX_LINES = 10;

double seconds()
{
    timespec now = {};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

/// Characters of a UTF-8 text, which take a place each on most terminals.
std::size_t width_of(const std::string& text)
{
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) {
        return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
    }));
}

/// Green from 80 percent, yellow from 50, else red.
std::string coloured(const std::string& percentage)
{
    const double value = percentage == "-" ? 100 : std::atof(percentage.c_str());
    const char* const colour = value >= 80 ? "32" : value >= 50 ? "33" : "31";
    return std::string("\033[") + colour + "m" + percentage + "\033[m";
}

} // namespace

void Findings::add(const std::string& kind, const std::string& line)
{
    kinds_[kind].insert(line);
    has_problems_ = true;
}

void Findings::note(const std::string& kind, const std::string& line)
{
    kinds_[kind].insert(line);
}

std::vector<std::string> Findings::lines() const
{
    std::vector<std::string> out;
    for (const auto& [kind, lines] : kinds_) {
        const std::size_t shown = std::min(lines.size(), MAX_LINES);
        out.insert(out.end(), lines.begin(),
                   std::next(lines.begin(), static_cast<std::ptrdiff_t>(shown)));
        if (shown < lines.size()) {
            out.push_back("and " + std::to_string(lines.size() - shown) + " more " + kind);
        }
    }
    return out;
}

void Findings::print() const
{
    for (const std::string& line : lines()) {
        warn("%s", line.c_str());
    }
}

bool finish_output()
{
    static bool is_said = false;
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) {
        return true;
    }
    if (!std::exchange(is_said, true)) {
        warn("standard output cannot be written; make room there");
    }
    return false;
}

Progress::Progress(std::string what, std::size_t total) : what_(std::move(what)), total_(total)
{
    next_ = ::isatty(STDERR_FILENO) != 0 ? seconds() + 0.5 : 0;
}

Progress::~Progress()
{
    if (is_drawn_) {
        std::fputs("\r\033[K", stderr);
    }
}

void Progress::step()
{
    ++done_;
    if (next_ > 0 && seconds() >= next_) {
        std::fprintf(stderr, "\r\033[K%s %zu of %zu", what_.c_str(), done_, total_);
        std::fflush(stderr);
        is_drawn_ = true;
        next_ = seconds() + 0.1;
    }
}

Table::Table(const std::vector<std::string>& titles) : rows_(1)
{
    for (const std::string& title : titles) {
        is_right_.push_back(title[0] == '>');
        rows_[0].push_back(title.substr(is_right_.back() ? 1 : 0));
    }
}

void Table::add(std::vector<std::string> cells)
{
    for (std::string& cell : cells) {
        std::replace_if(cell.begin(), cell.end(), is_control, '?');
    }
    rows_.push_back(std::move(cells));
}

void Table::print() const
{
    const bool has_colours = ::isatty(STDOUT_FILENO) != 0 && !env_is_filled("NO_COLOR");
    std::vector<std::size_t> widths(is_right_.size());
    for (const auto& row : rows_) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            widths[i] = std::max(widths[i], width_of(row[i]));
        }
    }
    for (const auto& row : rows_) {
        std::string line;
        for (std::size_t i = 0; i < row.size(); ++i) {
            const std::string blanks(widths[i] - width_of(row[i]), ' ');
            const bool is_coloured = has_colours && rows_[0][i] == "%" && &row != &rows_[0];
            const std::string cell = is_coloured ? coloured(row[i]) : row[i];
            line += (i == 0 ? "" : "  ") + (is_right_[i] ? blanks + cell : cell + blanks);
        }
        line.erase(line.find_last_not_of(' ') + 1);
        std::puts(line.c_str());
    }
}
