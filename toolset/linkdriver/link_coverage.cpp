// Objects on the command line have no stub, unlike most static libraries, so the link registers
// them. The same goes for what the stubs of libraries leave out: members that were archived without
// the wrapper, or by more than one archive step.
#include "toolset/linkdriver/link_coverage.h"

#include "commonfunc/path_name.h"
#include "contract/names.h"
#include "toolset/linkdriver/archive_coverage.h"

#include <algorithm>
#include <cctype>
#include <map>
#include <utility>

namespace
{

/// A text among the object's data can begin like the name of an array.
bool is_no_symbol(const CoverageSymbol& symbol)
{
    const auto is_part = [](unsigned char c) { return std::isalnum(c) != 0 || c == '_'; };
    return symbol.name.size() > MAX_SYMBOL ||
           !std::all_of(symbol.name.begin(), symbol.name.end(), is_part);
}

/// Leaves only names that a compiler driver gives.
void keep_symbols(std::vector<CoverageSymbol>& found)
{
    found.erase(std::remove_if(found.begin(), found.end(), is_no_symbol), found.end());
}

} // namespace

LinkCoverage find_coverage(const LinkCommand& link)
{
    LinkCoverage coverage;
    const auto add = [&](const LinkInput& input, ScannedObject&& object) {
        coverage.first = std::min(coverage.first, input.position);
        if (!object.symbols.empty()) {
            coverage.objects.push_back(std::move(object));
        }
    };
    for (const LinkInput& input : link.objects) {
        ScannedObject object;
        if (scan_object(absolute_path(input.path), object)) {
            keep_symbols(object.symbols);
        }
        if (!object.symbols.empty()) {
            add(input, std::move(object));
        }
    }
    std::set<std::string> arrays;
    std::set<std::string> seen;
    ScannedObject registered;
    for (const LinkInput& input : link.archives) {
        if (!seen.insert(absolute_path(input.path)).second) {
            continue;
        }
        ArchiveCoverage archive = read_archive(input.path);
        keep_symbols(archive.unregistered.symbols);
        coverage.has_twins = coverage.has_twins || archive.has_twins;
        for (const auto& [module, build] : archive.modules) {
            coverage.has_twins = !coverage.modules.insert(module).second || coverage.has_twins;
            coverage.libraries.push_back({archive.unregistered.path,
                                          build.area,
                                          build.buid,
                                          {archive.arrays.begin(), archive.arrays.end()}});
        }
        for (const std::string& array : archive.arrays) {
            coverage.has_twins = !arrays.insert(array).second || coverage.has_twins;
            add_symbol(registered, array);
        }
        if (!archive.modules.empty() || !archive.unregistered.symbols.empty()) {
            add(input, std::move(archive.unregistered));
        }
    }
    if (coverage.has_twins) {
        // Only one of two equal stubs will run. The runtime counts no array twice.
        registered.path = link.output;
        coverage.objects.push_back(std::move(registered));
    }
    return coverage;
}
