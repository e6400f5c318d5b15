// Objects on the command line have no stub, unlike most static libraries, so the link registers
// them. The same goes for what the stubs of libraries leave out: members that were archived without
// the wrapper, or by more than one archive step.
#include "toolset/linkdriver/link_coverage.h"

#include "commonfunc/file_ops.h"
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

/// Looks through the inputs of a link, one after the other.
class CoverageFinder
{
public:
    explicit CoverageFinder(const std::string& output) : output_(absolute_path(output)) {}

    void look_at_object(const LinkInput& input)
    {
        ScannedObject object;
        if (scan_object(absolute_path(input.path), object)) {
            keep_symbols(object.symbols);
        }
        if (!object.symbols.empty()) {
            add(input, std::move(object));
        }
    }

    void look_at_archive(const LinkInput& input)
    {
        const bool is_new = archives_.insert(absolute_path(input.path)).second;
        if (!is_new) {
            return;
        }
        ArchiveCoverage archive = read_archive(input.path);
        keep_symbols(archive.unregistered.symbols);
        note_twins(archive);
        for (const auto& [module, build] : archive.modules) {
            coverage_.libraries.push_back({archive.unregistered.path,
                                           build.area,
                                           build.buid,
                                           {archive.arrays.begin(), archive.arrays.end()}});
        }
        if (!archive.modules.empty() || !archive.unregistered.symbols.empty()) {
            add(input, std::move(archive.unregistered));
        }
    }

    /// What was found. Of two equal stubs only one will run, and one whose work area is
    /// displaced says so in vain: the link registers what the libraries do as well; the runtime
    /// counts no array twice.
    LinkCoverage result()
    {
        if (coverage_.has_twins) {
            registered_.path = output_;
            coverage_.objects.push_back(std::move(registered_));
        }
        return std::move(coverage_);
    }

private:
    void add(const LinkInput& input, ScannedObject&& object)
    {
        coverage_.first = std::min(coverage_.first, input.position);
        if (!object.symbols.empty()) {
            coverage_.objects.push_back(std::move(object));
        }
    }

    /// True when a program has taken the place of the work area, or will by this link.
    bool is_displaced(const std::string& area) const
    {
        const std::string place = area.substr(0, area.rfind('/'));
        return place == output_ || (QMRFileExists(place.c_str()) != 0 && area[0] == '/' &&
                                    QMRPathIsDirectory(place.c_str()) == 0);
    }

    void note_twins(const ArchiveCoverage& archive)
    {
        bool has_twins = archive.has_twins;
        for (const auto& [module, build] : archive.modules) {
            const bool is_new = coverage_.modules.insert(module).second;
            has_twins = has_twins || !is_new || is_displaced(build.area);
        }
        for (const std::string& array : archive.arrays) {
            const bool is_new = arrays_.insert(array).second;
            has_twins = has_twins || !is_new;
            add_symbol(registered_, array);
        }
        coverage_.has_twins = coverage_.has_twins || has_twins;
    }

    std::string output_; ///< absolute
    LinkCoverage coverage_;
    std::set<std::string> archives_; ///< that were looked at
    std::set<std::string> arrays_;   ///< that libraries register
    ScannedObject registered_;       ///< the same, as symbols of one object
};

} // namespace

LinkCoverage find_coverage(const LinkCommand& link)
{
    CoverageFinder finder(link.output);
    for (const LinkInput& input : link.objects) {
        finder.look_at_object(input);
    }
    for (const LinkInput& input : link.archives) {
        finder.look_at_archive(input);
    }
    return finder.result();
}
