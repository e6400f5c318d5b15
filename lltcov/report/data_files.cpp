// The compiler writes OBJECT.gcno without the object's ".o"; tools look for the data beside it.
#include "lltcov/report/data_files.h"

#include "commonfunc/file_io.h"
#include "commonfunc/text.h"
#include "contract/record.h"
#include "lltcov/common/project.h"
#include "lltcov/report/gcov_files.h"

#include <filesystem>
#include <set>
#include <utility>
#include <vector>

namespace
{

/// The place of the object's files below the directory, without their suffix.
std::string stem_of(const std::string& object, const std::string& root)
{
    const std::string plain = std::filesystem::path(object).lexically_normal();
    std::string stem = shown_path(plain, root);
    stem.erase(0, stem.find_first_not_of('/'));
    const bool has_suffix = stem.size() > 2 && ends_with(stem, ".o");
    return has_suffix ? stem.substr(0, stem.size() - 2) : stem;
}

/// The stem, with a number after it when another object has it.
std::string free_stem(const std::string& stem, std::set<std::string>& taken)
{
    std::string name = stem;
    for (int number = 2; !taken.insert(name).second; ++number) {
        name = stem + "-" + std::to_string(number);
    }
    return name;
}

} // namespace

void write_data_files(const ProjectData& data, const std::string& directory, Findings& findings)
{
    namespace fs = std::filesystem;
    std::set<std::string> taken;
    for (const InstrumentedObject& object : data.objects) {
        const Record& record = object.record;
        if (record.compiler != CounterSource::gcc) {
            findings.add("objects of other compilers",
                         "'" + record.object +
                             "' is not of gcc: left out, there are no such files for it");
            continue;
        }
        const fs::path stem =
            fs::path(directory) / free_stem(stem_of(record.object, data.directory), taken);
        const RunCounters runs = all_runs(object);
        fs::create_directories(stem.parent_path());
        if (replace_file(stem.string() + ".gcno", record.notes) != Writing::done ||
            replace_file(stem.string() + ".gcda", data_file(record, runs.counters, runs.runs)) !=
                Writing::done) {
            findings.add("unwritten files", "'" + record.object + "' is left out");
        }
    }
}
