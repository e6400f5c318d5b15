// Objects of clang are read one by one to know their sources; those that are shown in full are then
// read once more, together. The source's record holds size and time of the text that was compiled.
// Headers have no record: one that is newer than the compilation counts as changed.
#include "lltcov/report/shown_sources.h"

#include "commonfunc/env.h"
#include "commonfunc/text.h"
#include "contract/record.h"
#include "lltcov/common/command_line.h"
#include "lltcov/common/project.h"
#include "lltcov/report/gcov_reader.h"
#include "lltcov/report/llvm_reader.h"

#include <algorithm>
#include <sys/stat.h>
#include <utility>

namespace
{

bool has_run(const Counters& counters)
{
    return std::any_of(counters.begin(), counters.end(),
                       [](std::uint64_t count) { return count > 0; });
}

bool is_newer(const timespec& a, const timespec& b)
{
    return a.tv_sec != b.tv_sec ? a.tv_sec > b.tv_sec : a.tv_nsec > b.tv_nsec;
}

bool has_changed(const InstrumentedObject& object, const std::string& path,
                 const struct stat& state)
{
    if (path == object.record.source && object.source_mtime != 0) {
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
    return sum_of(totals_of(objects));
}

Coverage CoverageMaker::coverage_of_test(const std::string& test,
                                         const std::vector<std::size_t>& objects)
{
    std::vector<std::size_t> known; // all runs of these are of this test
    std::vector<std::size_t> others;
    std::vector<ObjectReading> readings;
    for (const std::size_t index : objects) {
        const InstrumentedObject& object = data_.objects[index];
        const auto runs = object.runs.find(test);
        const bool has_runs = runs != object.runs.end();
        if (!test.empty() && !(has_runs && has_run(runs->second.counters))) {
            continue;
        }
        if (object.runs.size() == (has_runs ? 1U : 0U)) {
            known.push_back(index);
            continue;
        }
        others.push_back(index);
        readings.push_back(reading_of(index, has_runs ? runs->second.counters
                                                      : Counters(object.record.array_bytes / 8)));
    }
    std::vector<Share> shares = totals_of(known);
    read(readings);
    for (std::size_t i = 0; i < others.size(); ++i) {
        shares.push_back({others[i], &readings[i].coverage, readings[i].counters});
    }
    return sum_of(shares);
}

std::vector<CoverageMaker::Share> CoverageMaker::totals_of(const std::vector<std::size_t>& objects)
{
    read_totals(objects);
    std::vector<Share> shares(objects.size());
    std::transform(objects.begin(), objects.end(), shares.begin(), [this](std::size_t index) {
        const InstrumentedObject& object = data_.objects[index];
        const bool is_clang = object.record.compiler == CounterSource::clang;
        return Share{index, &*totals_[index], is_clang ? all_runs(object).counters : Counters()};
    });
    return shares;
}

Coverage CoverageMaker::sum_of(const std::vector<Share>& shares)
{
    std::vector<ObjectReading> readings;
    std::vector<const Share*> others;
    for (const Share& share : shares) {
        if (is_read_together(share)) {
            readings.push_back(reading_of(share.object, share.counters));
        } else {
            others.push_back(&share);
        }
    }
    ObjectReadings together;
    for (ObjectReading& reading : readings) {
        together.push_back(&reading);
    }
    Coverage sum;
    if (!together.empty()) {
        sum = read_clang_together(together, counting_, findings_);
    }
    for (const Share* share : others) {
        add(sum, share->object, *share->coverage);
    }
    selection_.apply(sum, findings_);
    return sum;
}

bool CoverageMaker::is_read_together(const Share& share)
{
    const InstrumentedObject& object = data_.objects[share.object];
    return object.record.compiler == CounterSource::clang && !share.coverage->empty() &&
           std::all_of(share.coverage->begin(), share.coverage->end(),
                       [&](const auto& source) { return is_shown(object, source.first); });
}

ObjectReading CoverageMaker::reading_of(std::size_t object, Counters counters) const
{
    const InstrumentedObject& of = data_.objects[object];
    return {&of.record, std::move(counters), {}, of.file};
}

std::vector<std::size_t> CoverageMaker::objects_with(const std::string& path, std::uint32_t line)
{
    const std::vector<std::size_t> all = all_objects(data_);
    read_totals(all);
    std::vector<std::size_t> objects;
    std::copy_if(all.begin(), all.end(), std::back_inserter(objects), [&](std::size_t object) {
        const auto source = totals_[object]->find(path);
        return source != totals_[object]->end() && source->second.lines.count(line) != 0;
    });
    return objects;
}

void CoverageMaker::read_totals(const std::vector<std::size_t>& objects)
{
    std::vector<std::size_t> missing;
    std::vector<ObjectReading> readings;
    for (const std::size_t index : objects) {
        if (!totals_[index]) {
            missing.push_back(index);
            readings.push_back(reading_of(index, all_runs(data_.objects[index]).counters));
        }
    }
    read(readings);
    for (std::size_t i = 0; i < missing.size(); ++i) {
        totals_[missing[i]] = std::move(readings[i].coverage);
    }
}

void CoverageMaker::read(std::vector<ObjectReading>& readings)
{
    ObjectReadings of_gcc;
    ObjectReadings of_clang;
    for (ObjectReading& reading : readings) {
        (reading.record->compiler == CounterSource::gcc ? of_gcc : of_clang).push_back(&reading);
    }
    read_gcc_objects(of_gcc, counting_, findings_);
    if (!of_clang.empty()) {
        read_clang_objects(of_clang, counting_, findings_);
    }
}

void CoverageMaker::add(Coverage& sum, std::size_t object, const Coverage& coverage)
{
    for (const auto& [path, source] : coverage) {
        if (is_shown(data_.objects[object], path)) {
            add_source(sum[path], source);
        }
    }
}

bool CoverageMaker::is_shown(const InstrumentedObject& object, const std::string& path)
{
    if (is_system_header(path) && !is_inside(path, data_.directory)) {
        return false;
    }
    const std::optional<struct stat>& state = state_of(path);
    if (!state && path != object.record.source) {
        findings_.note("files that are not there",
                       "'" + path + "', which '" + object.record.source +
                           "' names in a line directive or includes, is not there: left out");
        return false;
    }
    if (!state && !object.is_in_use) {
        findings_.note(
            "modules that are gone",
            "'" + path + "' is gone, and so is what was built of it in '" + object.area +
                "': left out; lltcov clean --gone forgets it; if the project has moved, name its old and new directory by --map OLD=NEW");
        return false;
    }
    if (!state) {
        findings_.add(
            "sources that are gone",
            "'" + path + "' is gone: its lines are left out; build '" + object.area +
                "' anew, or remove its output and run lltcov clean --gone; if the project has moved, name its old and new directory by --map OLD=NEW");
        return false;
    }
    if (has_changed(object, path, *state)) {
        findings_.add(
            "changed sources",
            "'" + path + "' has changed since '" + object.record.object +
                "' was compiled: its lines of that object are left out; build and run the tests again");
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

Counting wanted_counting()
{
    const std::string text = env_text("LLTCOV_COUNT");
    if (text == "lines") {
        return Counting::lines;
    }
    if (text == "conditions") {
        return Counting::conditions;
    }
    if (!text.empty() && text != "branches") {
        throw UsageError("LLTCOV_COUNT is '" + text + "'; it is lines, branches or conditions");
    }
    return Counting::branches;
}
