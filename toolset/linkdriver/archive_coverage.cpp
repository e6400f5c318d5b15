// The index of an archive names what its stubs define; what its members refer to stands in the
// members, which in a thin archive are files of their own.
#include "toolset/linkdriver/archive_coverage.h"

#include "commonfunc/path_name.h"
#include "commonfunc/text.h"
#include "contract/names.h"
#include "contract/places.h"
#include "toolset/linkdriver/link_file.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <utility>
#include <vector>

namespace
{

constexpr std::string_view NUL("\0", 1);

std::string_view up_to(std::string_view text, std::string_view end)
{
    return text.substr(0, text.find(end));
}

void read_symbols(std::string_view names, ArchiveCoverage& coverage)
{
    while (!names.empty()) {
        const std::string_view name = up_to(names, NUL);
        if (begins_with(name, TEST_LOADER_PREFIX)) {
            const bool is_new =
                coverage.modules.emplace(name.substr(std::strlen(TEST_LOADER_PREFIX)), StubBuild())
                    .second;
            coverage.has_twins = coverage.has_twins || !is_new;
        } else if (begins_with(name, ARRAY_PREFIX)) {
            coverage.arrays.emplace(name.substr(std::strlen(ARRAY_PREFIX)));
        }
        names.remove_prefix(std::min(name.size() + 1, names.size()));
    }
}

/// Finds the builds that stubs in the bytes of one or more objects register: of each module the
/// text that is its work area, and after it the one with the build id.
void find_builds(std::string_view bytes, std::map<std::string, StubBuild>& modules)
{
    constexpr std::string_view KEY = "\"buid\":\"";
    for (auto& [module, build] : modules) {
        const std::string tail = places::work_area("", module) + std::string(NUL);
        const std::size_t at = bytes.find(tail);
        const std::size_t key = bytes.find(KEY, at);
        if (at != bytes.npos && key != bytes.npos) {
            const std::size_t start = bytes.rfind('\0', at) + 1;
            build = {std::string(bytes.substr(start, at + tail.size() - NUL.size() - start)),
                     std::string(up_to(bytes.substr(key + KEY.size()), "\""))};
        }
    }
}

/// Adds the coverage symbols in the bytes of one or more objects, but those that were seen.
void find_symbols(std::string_view bytes, std::set<std::string>& seen, ScannedObject& found)
{
    for (std::size_t at = bytes.find(ARRAY_PREFIX); at != bytes.npos;
         at = bytes.find(ARRAY_PREFIX, at + std::strlen(ARRAY_PREFIX))) {
        const std::string_view text = bytes.substr(at + std::strlen(ARRAY_PREFIX));
        const std::string name(up_to(text, NUL));
        if (!name.empty() && name.find(' ') == name.npos && seen.insert(name).second) {
            add_symbol(found, name);
        }
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
    if (!read_input(path, content)) {
        return coverage;
    }
    const ArchiveFile archive = read_archive_file(content);
    read_symbols(archive.symbols, coverage);
    if (coverage.modules.empty()) {
        coverage.arrays.clear(); // defined by the objects themselves: no stub registers them
    }
    std::set<std::string> seen = coverage.arrays;
    for_each_member(path, archive, [&](std::string_view bytes) {
        find_symbols(bytes, seen, coverage.unregistered);
        find_builds(bytes, coverage.modules);
    });
    return coverage;
}

void for_each_member(const std::string& path, const ArchiveFile& archive,
                     const std::function<void(std::string_view)>& look_at)
{
    for (const ArchiveMember& member : archive.members) {
        std::string outside;
        if (archive.is_thin) {
            const std::string name(member.name);
            read_input(name[0] == '/' ? name : path.substr(0, path.rfind('/') + 1) + name, outside);
        }
        look_at(archive.is_thin ? outside : member.content);
    }
}
