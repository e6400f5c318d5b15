// An archive is "!<arch>\n" or "!<thin>\n" and members: a header of 60 bytes, whose text begins
// with the member's name and has its size at 48, and the content, at even positions; see ar(5). The
// member "/" (or "/SYM64/") is the index of the symbols that the others define: a big-endian count,
// as many offsets, and the names one after the other. "//" holds long names, each ended by "/\n",
// which "/OFFSET" names. In a thin archive the other members are such names without content.
#include "examples/toolset/lltld/archive_coverage.h"

#include "commonfunc/Caddis_func.h"

#include <cstdint>
#include <string_view>

namespace
{

constexpr std::string_view THIN_MAGIC = "!<thin>\n";
constexpr std::size_t HEADER_SIZE = 60;
constexpr std::string_view STUB_PREFIX = "ZJ_Start_";
constexpr std::string_view ARRAY_PREFIX = "g_QMRCovData_";
constexpr std::string_view NUL("\0", 1);

std::string_view up_to(std::string_view text, std::string_view end)
{
    return text.substr(0, text.find(end));
}

/// What an archive holds beside its members' contents.
struct Directory {
    std::string_view symbols;         ///< names of the index, each ended by a NUL
    std::vector<std::string> outside; ///< files that a thin archive names, relative to it
};

/// The names of an index whose offsets have `width` bytes.
std::string_view names_of_index(std::string_view index, std::size_t width)
{
    std::uint64_t count = 0;
    for (const char byte : index.substr(0, width)) {
        count = count << 8 | static_cast<unsigned char>(byte);
    }
    return count < index.size() / width ? index.substr(width * (count + 1)) : std::string_view();
}

Directory read_directory(std::string_view archive)
{
    Directory directory;
    std::string_view long_names;
    const bool is_thin = begins_with(archive, THIN_MAGIC);
    for (std::size_t at = THIN_MAGIC.size(); at + HEADER_SIZE <= archive.size();) {
        const std::string_view header = archive.substr(at, HEADER_SIZE);
        const std::string_view name = up_to(header.substr(0, 16), " ");
        const int size = to_int(std::string(header.substr(48, 10)).c_str());
        const std::string_view content =
            archive.substr(at + HEADER_SIZE, static_cast<std::size_t>(size > 0 ? size : 0));
        at += HEADER_SIZE;
        if (is_thin && name != "/" && name != "//" && name != "/SYM64/") {
            const int offset = to_int(std::string(name.substr(1)).c_str());
            if (offset >= 0 && static_cast<std::size_t>(offset) < long_names.size()) {
                directory.outside.emplace_back(
                    up_to(long_names.substr(static_cast<std::size_t>(offset)), "/\n"));
            }
            continue;
        }
        at += content.size() + content.size() % 2;
        if (name == "//") {
            long_names = content;
        } else if (name == "/" || name == "/SYM64/") {
            directory.symbols = names_of_index(content, name == "/" ? 4 : 8);
        } else if (!is_thin) {
            break; // the members follow
        }
    }
    return directory;
}

void read_symbols(std::string_view names, ArchiveCoverage& coverage)
{
    while (!names.empty()) {
        const std::string_view name = up_to(names, NUL);
        if (begins_with(name, STUB_PREFIX)) {
            const bool is_new =
                coverage.modules.emplace(name.substr(STUB_PREFIX.size()), StubBuild()).second;
            coverage.has_twins = coverage.has_twins || !is_new;
        } else if (begins_with(name, ARRAY_PREFIX)) {
            coverage.arrays.emplace(name.substr(ARRAY_PREFIX.size()));
        }
        names.remove_prefix(std::min(name.size() + 1, names.size()));
    }
}

/// Finds the builds that stubs in the bytes of one or more objects register: of each module the
/// text that is its work area, and behind it the one with the build id.
void find_builds(std::string_view bytes, std::map<std::string, StubBuild>& modules)
{
    constexpr std::string_view KEY = "\"buid\":\"";
    for (auto& [module, build] : modules) {
        const std::string tail = "/" + module + "/codemeasure" + std::string(NUL);
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
         at = bytes.find(ARRAY_PREFIX, at + ARRAY_PREFIX.size())) {
        const std::string_view text = bytes.substr(at + ARRAY_PREFIX.size());
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
    if (read_whole_file(path, content) != Reading::done) {
        return coverage;
    }
    const Directory directory = read_directory(content);
    read_symbols(directory.symbols, coverage);
    if (coverage.modules.empty()) {
        coverage.arrays.clear(); // defined by the objects themselves: no stub registers them
    }
    std::set<std::string> seen = coverage.arrays;
    find_symbols(content, seen, coverage.unregistered);
    find_builds(content, coverage.modules);
    for (const std::string& name : directory.outside) {
        const std::string file = name[0] == '/' ? name : path.substr(0, path.rfind('/') + 1) + name;
        std::string member;
        if (read_whole_file(file, member) == Reading::done) {
            find_symbols(member, seen, coverage.unregistered);
            find_builds(member, coverage.modules);
        }
    }
    return coverage;
}
