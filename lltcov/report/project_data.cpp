// The module's merged table says which symbols belong to its last build; the record of each is in
// the numbered copy that the step took, else where the compiler driver left it.
#include "lltcov/report/project_data.h"

#include "commonfunc/file_io.h"
#include "commonfunc/file_ops.h"
#include "commonfunc/file_tree.h"
#include "commonfunc/path_name.h"
#include "commonfunc/text_lines.h"
#include "contract/linked_libraries.h"
#include "contract/places.h"
#include "contract/project_file.h"
#include "contract/source_table.h"

#include <algorithm>
#include <numeric>
#include <optional>
#include <sys/stat.h>
#include <tuple>
#include <utility>

namespace
{

constexpr const char* DAMAGED = "damaged records";
constexpr const char* REBUILD = "; build it again through lltwrapper";

/// The records of the table at `path`; none when there is no file.
std::vector<_SOURCEFILE_OBJECT> read_tab(const std::string& path)
{
    std::string content;
    read_whole_file(path, content);
    return read_source_table(content);
}

/// The time at which a file got its content; 0 when there is none.
timespec time_of(const std::string& path)
{
    struct stat info = {};
    return ::stat(path.c_str(), &info) == 0 ? info.st_mtim : timespec{};
}

class ModuleReader
{
public:
    ModuleReader(ProjectData& data, Findings& findings)
        : data_(data), findings_(findings), temporary_(places::temporary_area(data.root))
    {
    }

    void read(const Module& module)
    {
        ModuleData entry;
        entry.module = module;
        entry.buid = project_value(module.area, project_key::BUILD_ID);
        entry.output = mapped_path(data_.maps, project_value(module.area, project_key::OUTPUT));
        entry.built = project_value(module.area, project_key::BUILT);
        const std::string path = places::table(places::db(module.area));
        const std::vector<_SOURCEFILE_OBJECT> records = read_tab(path);
        if (records.empty() || entry.buid.empty()) {
            findings_.add(DAMAGED, "'" + path + "' is missing or damaged: module " + module.name +
                                       " is left out" + REBUILD);
            return;
        }
        for (const _SOURCEFILE_OBJECT& record : records) {
            read_object(record, entry);
        }
        data_.modules.push_back(std::move(entry));
    }

    /// Adds the libraries that links took and whose work areas other libraries of the same name
    /// have taken over since. A library that was built several times counts as it was linked last.
    void read_displaced()
    {
        std::vector<std::tuple<std::time_t, long, std::string>> lists;
        for (const std::string& name : names_in(data_.root)) {
            const std::string path = places::linked_libraries(places::work_area(data_.root, name));
            const timespec time = time_of(path);
            if (time.tv_sec != 0) {
                taken_.insert(
                    places::work_area(data_.root, name)); // a link, which is run or loaded
                lists.emplace_back(time.tv_sec, time.tv_nsec, path);
            }
        }
        std::sort(lists.rbegin(), lists.rend());
        for (const auto& [seconds, nanoseconds, path] : lists) {
            std::string text;
            read_whole_file(path, text);
            try {
                for (const LinkedLibrary& library : read_linked_libraries(text)) {
                    add_displaced(library);
                }
            } catch (const FormatError& error) {
                knows_taken_ = false;
                findings_.add(DAMAGED, path + ":" + std::to_string(error.line) + ": " +
                                           error.what() + "; link that again through lltwrapper");
            }
        }
        for (ModuleData& module : data_.modules) {
            module.is_taken = !knows_taken_ || taken_.count(module.module.area) != 0;
        }
    }

private:
    void add_displaced(const LinkedLibrary& library)
    {
        ModuleData entry;
        const std::string area = mapped_path(data_.maps, library.area);
        entry.module.area = absolute_path(area[0] == '/' ? area : data_.root + "/" + area);
        taken_.insert(entry.module.area);
        entry.module.name = base_name(split_path(entry.module.area + ".").directory);
        entry.buid = library.buid;
        entry.output = mapped_path(data_.maps, library.path);
        bool has_successor = false;
        for (const ModuleData& known : data_.modules) {
            const bool shares_area = known.module.area == entry.module.area;
            has_successor = has_successor || shares_area;
            if (shares_area && (known.output == entry.output || is_copy(known, library))) {
                return;
            }
        }
        if (!has_successor || QMRFileExists(entry.output.c_str()) == 0) {
            return;
        }
        for (const std::string& symbol : library.symbols) {
            const std::string path = places::table(places::symbol_db(temporary_, symbol));
            const std::vector<_SOURCEFILE_OBJECT> own = read_tab(path);
            if (own.empty()) {
                findings_.add(DAMAGED, "'" + path + "' is missing or damaged: a source of '" +
                                           entry.output + "' is left out" + REBUILD);
            } else {
                read_object(own[0], entry);
            }
        }
        data_.modules.push_back(std::move(entry));
    }

    /// True when the library is a copy of the module's output, or was filled from it.
    bool is_copy(const ModuleData& module, const LinkedLibrary& library) const
    {
        return module.buid == library.buid &&
               std::any_of(library.symbols.begin(), library.symbols.end(),
                           [&](const std::string& symbol) {
                               const auto known = data_.object_of_symbol.find(symbol);
                               return known != data_.object_of_symbol.end() &&
                                      std::count(module.objects.begin(), module.objects.end(),
                                                 known->second) != 0;
                           });
    }

    void read_object(const _SOURCEFILE_OBJECT& record, ModuleData& module)
    {
        const std::string symbol = symbol_in_table(record);
        auto known = data_.object_of_symbol.find(symbol);
        if (known == data_.object_of_symbol.end()) {
            std::optional<InstrumentedObject> object = load(record, symbol, module.module);
            if (!object) {
                return;
            }
            known = data_.object_of_symbol.emplace(symbol, data_.objects.size()).first;
            data_.objects.push_back(std::move(*object));
        }
        std::vector<std::size_t>& objects = module.objects;
        if (std::find(objects.begin(), objects.end(), known->second) == objects.end()) {
            objects.push_back(known->second);
        }
        InstrumentedObject& object = data_.objects[known->second];
        object.is_in_use = object.is_in_use || QMRFileExists(module.output.c_str()) != 0;
    }

    std::optional<InstrumentedObject> load(const _SOURCEFILE_OBJECT& record,
                                           const std::string& symbol, const Module& module)
    {
        const std::string left = places::symbol_db(temporary_, symbol);
        const std::string copy = places::numbered_db(module.area, record.fileid);
        InstrumentedObject object;
        object.symbol = symbol;
        object.area = module.area;
        std::string path = places::record(copy);
        if (!read_record(path, object)) {
            path = places::record(left);
            if (!read_record(path, object)) {
                findings_.add(DAMAGED, "'" + path + "' is missing or damaged: the source of '" +
                                           symbol + "' is left out" + REBUILD);
                return std::nullopt;
            }
        }
        object.file = places::saved_object(module.area, symbol);
        if (QMRFileExists(object.file.c_str()) == 0) {
            object.file = places::saved_object(temporary_, symbol);
        }
        // A source that was touched and compiled again has the same symbol and a newer record.
        std::vector<_SOURCEFILE_OBJECT> own = read_tab(places::table(left));
        const timespec compiled = time_of(own.empty() ? object.record.object : places::table(left));
        object.compiled = compiled.tv_sec == 0 ? time_of(path) : compiled;
        own = own.empty() ? read_tab(places::table(copy)) : own;
        if (!own.empty() && symbol_in_table(own[0]) == symbol) {
            object.source_size = own[0].size;
            object.source_mtime = own[0].mtime;
        }
        return object;
    }

    /// True when the file holds the record of the object's symbol; a damaged one is a finding.
    bool read_record(const std::string& path, InstrumentedObject& object)
    {
        std::string bytes;
        read_whole_file(path, bytes);
        try {
            for (Record& record : read_records(bytes)) {
                if (record.symbol == object.symbol) {
                    object.record = std::move(record);
                    move(object.record);
                    return true;
                }
            }
        } catch (const FormatError& error) {
            findings_.add(DAMAGED,
                          path + ":" + std::to_string(error.line) + ": " + error.what() + REBUILD);
        }
        return false;
    }

    /// Sources are looked for where they are now.
    void move(Record& record) const
    {
        record.source = mapped_path(data_.maps, record.source);
        record.object = mapped_path(data_.maps, record.object);
        for (const auto& [there, here] : data_.maps) {
            record.path_maps.emplace_back(here + "/", there + "/");
        }
    }

    ProjectData& data_;
    Findings& findings_;
    std::string temporary_;       ///< the temporary area
    std::set<std::string> taken_; ///< work areas of links, and of libraries that links took
    bool knows_taken_ = true;     ///< all lists of libraries could be read
};

} // namespace

ProjectData read_modules(const std::string& root, Findings& findings, const PathMaps& maps)
{
    ProjectData data;
    data.maps = maps;
    data.root = root;
    data.directory = project_directory(root);
    const std::vector<Module> modules = modules_of(root);
    Progress progress("reading modules", modules.size());
    ModuleReader reader(data, findings);
    for (const Module& module : modules) {
        reader.read(module);
        progress.step();
    }
    reader.read_displaced();
    return data;
}

RunCounters all_runs(const InstrumentedObject& object)
{
    RunCounters all;
    all.counters.resize(object.record.array_bytes / 8);
    for (const auto& [test, runs] : object.runs) {
        join_counters(all.counters, runs.counters, object.record.or_bytes / 8);
        all.runs = sum_of_counts(all.runs, runs.runs);
    }
    return all;
}

std::vector<std::size_t> all_objects(const ProjectData& data)
{
    std::vector<std::size_t> all(data.objects.size());
    std::iota(all.begin(), all.end(), std::size_t{0});
    return all;
}
