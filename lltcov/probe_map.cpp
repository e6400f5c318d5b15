// Paths repeat on every line, so that they are kept once and named by their index.
#include "lltcov/probe_map.h"

#include "commonfunc/text_lines.h"

#include <algorithm>
#include <tuple>
#include <unordered_map>

namespace
{

constexpr std::uint64_t MAX_LINE = INT32_MAX;

class Reader
{
public:
    Reader(std::string_view text, std::uint32_t probes) : lines_(text), probes_(probes) {}

    ProbeMap read()
    {
        if (!lines_.next() || lines_.rest_of_line() != "lltprobes 1") {
            throw FormatError(1, "this is no probe map of format 1");
        }
        while (lines_.next()) {
            const std::string_view key = lines_.word();
            if (key == "source") {
                map_.source = lines_.rest_of_line();
            } else if (key == "object") {
                map_.object = lines_.rest_of_line();
            } else if (key == "probe") {
                read_probe();
            } else if (key == "function") {
                read_function();
            }
        }
        if (map_.source.empty()) {
            lines_.fail("the map names no source");
        }
        std::sort(map_.lines.begin(), map_.lines.end(), [](const auto& a, const auto& b) {
            return std::tie(a.path, a.line, a.function) < std::tie(b.path, b.line, b.function);
        });
        return std::move(map_);
    }

private:
    /// A function that has probes.
    struct Owner {
        std::uint32_t number;
        std::uint32_t first_probe;
    };

    /// probe COUNTER LINES FUNCTION PATH
    void read_probe()
    {
        if (probes_ == 0) {
            lines_.fail("a probe of a source that has none");
        }
        const auto probe = static_cast<std::uint32_t>(lines_.number("probe", probes_ - 1));
        if (probe < last_probe_) {
            lines_.fail("probe " + std::to_string(probe) + " stands behind a later one");
        }
        last_probe_ = probe;
        std::string_view list = lines_.word();
        const auto number = static_cast<std::uint32_t>(functions_.size());
        const std::uint32_t function =
            functions_.emplace(lines_.word(), Owner{number, probe}).first->second.number;
        const std::uint32_t path = path_index();
        do {
            map_.lines.push_back({path, line_of(split_off(list, ',')), function, probe});
        } while (!list.empty());
    }

    /// function NAME LINE PATH
    void read_function()
    {
        const std::string_view name = lines_.word();
        const std::uint32_t line = line_of(lines_.word());
        const auto owner = functions_.find(name);
        const bool has_probe = owner != functions_.end();
        map_.functions.push_back({std::string(name), path_index(), line,
                                  has_probe ? owner->second.first_probe : 0, has_probe});
    }

    std::uint32_t line_of(std::string_view digits) const
    {
        const auto line =
            static_cast<std::uint32_t>(lines_.number_of(digits, "line number", MAX_LINE));
        if (line == 0) {
            lines_.fail("there is no line 0");
        }
        return line;
    }

    std::uint32_t path_index()
    {
        const std::string_view path = lines_.rest_of_line();
        if (path.empty()) {
            lines_.fail("the path is missing");
        }
        const auto index = static_cast<std::uint32_t>(map_.paths.size());
        const auto [place, is_new] = path_index_.emplace(path, index);
        if (is_new) {
            map_.paths.emplace_back(path);
        }
        return place->second;
    }

    TextLines lines_;
    std::uint32_t probes_;
    std::uint32_t last_probe_ = 0;
    std::unordered_map<std::string_view, Owner> functions_;
    std::unordered_map<std::string_view, std::uint32_t> path_index_;
    ProbeMap map_;
};

} // namespace

ProbeMap read_probe_map(std::string_view text, std::uint32_t probes)
{
    return Reader(text, probes).read();
}
