// The source's record holds size and time of the text that was compiled. Headers have no record:
// one that is newer than the compilation counts as changed.
#include "lltcov/shown_sources.h"

#include "commonfunc/text.h"

namespace
{

bool is_newer(const timespec& a, const timespec& b)
{
    return a.tv_sec != b.tv_sec ? a.tv_sec > b.tv_sec : a.tv_nsec > b.tv_nsec;
}

bool has_changed(const InstrumentedObject& object, const std::string& path,
                 const struct stat& state)
{
    if (path == object.map.source && object.source_mtime != 0) {
        return static_cast<std::uint32_t>(state.st_size) != object.source_size ||
               static_cast<std::uint32_t>(state.st_mtime) != object.source_mtime;
    }
    return is_newer(state.st_mtim, object.compiled);
}

} // namespace

bool is_system_header(const std::string& path)
{
    return begins_with(path, "/usr/") && path.find("/include/") != path.npos &&
           !begins_with(path, "/usr/src/") && !begins_with(path, "/usr/local/src/");
}

Coverage CoverageMaker::coverage_of(const std::vector<std::size_t>& objects)
{
    Coverage coverage;
    for (const std::size_t index : objects) {
        const InstrumentedObject& object = data_.objects[index];
        std::vector<bool> shown;
        for (const std::string& path : object.map.paths) {
            shown.push_back(is_shown(object, path));
        }
        add_object(coverage, object.map, object.counts, shown);
    }
    return coverage;
}

bool CoverageMaker::is_shown(const InstrumentedObject& object, const std::string& path)
{
    if (system_headers_ == SystemHeaders::left_out && is_system_header(path) &&
        !is_inside(path, data_.root)) {
        return false;
    }
    const std::optional<struct stat>& state = state_of(path);
    if (!state && path != object.map.source) {
        findings_.note("files that are not there",
                       "'" + path + "', which '" + object.map.source +
                           "' names in a line directive or includes, is not there: left out");
        return false;
    }
    if (!state && !object.is_in_use) {
        findings_.note("modules that are gone",
                       "'" + path + "' is gone, and so is what was built of it in '" + object.area +
                           "': left out; lltcov clean --gone forgets it");
        return false;
    }
    if (!state) {
        findings_.add("sources that are gone",
                      "'" + path + "' is gone: its lines are left out; build '" + object.area +
                          "' anew, or remove its output and run lltcov clean --gone");
        return false;
    }
    if (has_changed(object, path, *state)) {
        findings_.add("changed sources",
                      "'" + path + "' has changed since '" + object.map.object +
                          "' was compiled: its lines of that object are left out; build and run "
                          "the tests again");
        return false;
    }
    return true;
}

const std::optional<struct stat>& CoverageMaker::state_of(const std::string& path)
{
    const auto [place, is_new] = states_.emplace(path, std::nullopt);
    struct stat info = {};
    if (is_new && ::stat(path.c_str(), &info) == 0) {
        place->second = info;
    }
    return place->second;
}
