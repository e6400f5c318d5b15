#include "lltcov/console.h"

#include <algorithm>
#include <ctime>
#include <unistd.h>

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

} // namespace

void Findings::add(const std::string& kind, const std::string& line)
{
    std::vector<std::string>& lines = kinds_[kind];
    if (std::find(lines.begin(), lines.end(), line) == lines.end()) {
        lines.push_back(line);
    }
}

void Findings::print() const
{
    for (const auto& [kind, lines] : kinds_) {
        for (std::size_t i = 0; i < std::min(lines.size(), MAX_LINES); ++i) {
            say(lines[i]);
        }
        if (lines.size() > MAX_LINES) {
            say("and " + std::to_string(lines.size() - MAX_LINES) + " more " + kind);
        }
    }
}

std::vector<std::string> Findings::of(const std::string& kind) const
{
    const auto found = kinds_.find(kind);
    return found == kinds_.end() ? std::vector<std::string>() : found->second;
}

void say(const std::string& line)
{
    std::string text = "lltcov: " + line;
    const auto is_control = [](unsigned char c) { return c < 32 || c == 127; };
    std::replace_if(text.begin(), text.end(), is_control, ' '); // stays one line
    text += "\n";
    std::fwrite(text.data(), 1, text.size(), stderr);
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
