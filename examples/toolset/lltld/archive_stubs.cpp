// The index of a library (its first member, "/" or "/SYM64/") lists the symbols that its members
// define: a big-endian count, as many member offsets, and the names one after the other.
#include "examples/toolset/lltld/archive_stubs.h"

#include "commonfunc/Caddis_func.h"

#include <cstdint>
#include <cstring>
#include <string_view>

namespace
{

constexpr std::size_t MAGIC_SIZE = 8;
constexpr std::size_t HEADER_SIZE = 60;
constexpr std::string_view STUB_PREFIX = "ZJ_Start_";
constexpr std::string_view ARRAY_PREFIX = "g_QMRCovData_";

/// The names of the index, each ended by a NUL; empty when there is no index.
std::string_view index_names(std::string_view archive)
{
    if (archive.size() < MAGIC_SIZE + HEADER_SIZE) {
        return {};
    }
    const std::string_view header = archive.substr(MAGIC_SIZE, HEADER_SIZE);
    const bool is_wide = header.substr(0, 7) == "/SYM64/";
    if (!is_wide && header.substr(0, 2) != "/ ") {
        return {};
    }
    const std::size_t width = is_wide ? 8 : 4;
    const int size = to_int(std::string(header.substr(48, 10)).c_str());
    const std::string_view index =
        archive.substr(MAGIC_SIZE + HEADER_SIZE, static_cast<std::size_t>(size > 0 ? size : 0));
    std::uint64_t count = 0;
    for (std::size_t i = 0; i < width && i < index.size(); ++i) {
        count = count << 8 | static_cast<unsigned char>(index[i]);
    }
    return count < index.size() / width ? index.substr(width * (count + 1)) : std::string_view();
}

std::string_view up_to_nul(std::string_view text)
{
    return text.substr(0, text.find('\0'));
}

bool begins_with(std::string_view text, std::string_view start)
{
    return text.substr(0, start.size()) == start;
}

void read_index(std::string_view names, ArchiveCoverage& coverage)
{
    while (!names.empty()) {
        const std::string_view name = up_to_nul(names);
        if (begins_with(name, STUB_PREFIX)) {
            const bool is_new = coverage.modules.emplace(name.substr(STUB_PREFIX.size())).second;
            coverage.has_twins = coverage.has_twins || !is_new;
        } else if (begins_with(name, ARRAY_PREFIX)) {
            coverage.arrays.emplace(name.substr(ARRAY_PREFIX.size()));
        }
        names.remove_prefix(std::min(name.size() + 1, names.size()));
    }
}

} // namespace

void add_symbol(ScannedObject& object, const std::string& name)
{
    object.symbols.push_back({object.runs.size(), 0, name});
    object.runs.push_back(std::string(ARRAY_PREFIX) + name);
}

ArchiveCoverage read_archive(const std::string& path)
{
    ArchiveCoverage coverage;
    coverage.unregistered.path = absolute_path(path);
    std::string content;
    if (read_whole_file(path, content) != Reading::done) {
        return coverage;
    }
    read_index(index_names(content), coverage);
    std::set<std::string> seen = coverage.arrays;
    const std::string_view view = content;
    for (std::size_t at = view.find(ARRAY_PREFIX); at != view.npos;
         at = view.find(ARRAY_PREFIX, at + ARRAY_PREFIX.size())) {
        const std::string_view text = up_to_nul(view.substr(at));
        const std::string name(text.substr(ARRAY_PREFIX.size()));
        if (!name.empty() && name.find(' ') == name.npos && seen.insert(name).second) {
            add_symbol(coverage.unregistered, name);
        }
    }
    return coverage;
}
