// A dump belongs to the module whose work area it names. It counts only for the build that it was
// made by: the next archive step or link has another build id, and its counters may mean other
// lines.
#include "commonfunc/file_ops.h"
#include "commonfunc/file_tree.h"
#include "commonfunc/path_name.h"
#include "commonfunc/text_lines.h"
#include "contract/dump_file.h"
#include "contract/record.h"
#include "lltcov/common/console.h"
#include "lltcov/common/project.h"
#include "lltcov/report/coverage.h"
#include "lltcov/report/opened_dump.h"
#include "lltcov/report/project_data.h"

#include <algorithm>
#include <cstddef>
#include <exception>
#include <map>
#include <new>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace
{

constexpr const char* DAMAGED = "damaged dumps";
constexpr const char* AGAIN = "; remove it and run that test again";

class RunReader
{
public:
    RunReader(ProjectData& data, Findings& findings) : data_(data), findings_(findings)
    {
        for (ModuleData& module : data.modules) {
            module_of_area_.emplace(module.module.area, &module); // the one that has it now
            module_of_build_.emplace(std::pair(module.module.area, module.buid), &module);
        }
    }

    void read(const std::string& path)
    {
        try {
            DumpReader reader = open_dump(path);
            const Dump& dump = reader.dump();
            if (dump.area.empty()) {
                return; // its program was killed before it had written anything
            }
            if (ModuleData* module = module_of(dump)) {
                const auto build =
                    module_of_build_.find({module->module.area, std::string(dump.buid)});
                build == module_of_build_.end() ? refuse(dump, *module, path)
                                                : add(reader, *build->second, path);
            }
        } catch (const FormatError& error) {
            findings_.add(DAMAGED,
                          path + ":" + std::to_string(error.line) + ": " + error.what() + AGAIN);
        } catch (const std::bad_alloc&) {
            findings_.add(DAMAGED, "'" + path + "' takes more memory than there is" + AGAIN);
        } catch (const std::exception& error) {
            findings_.add(DAMAGED, "'" + path + "' cannot be read: " + error.what() + AGAIN);
        }
    }

    /// Says what was left out as a whole, when all files are read.
    void report(const std::string& directory)
    {
        for (const auto& [module, refused] : refused_) {
            tell(*module, "refused dumps",
                 std::to_string(refused.dumps) + (refused.dumps == 1 ? " dump of " : " dumps of ") +
                     module->module.name + (refused.dumps == 1 ? " is of " : " are of ") +
                     (refused.builds.size() == 1 ? "build " + *refused.builds.begin()
                                                 : "several other builds") +
                     ", '" + module->output + "' is of build " + module->buid +
                     ": not counted (one is '" + refused.path +
                     "'); lltcov clean, then run the tests again");
        }
        for (const auto& [area, dumps] : orphans_) {
            findings_.add("dumps of modules that are gone",
                          std::to_string(dumps) + " dumps of '" + area +
                              "', where no module is left: not counted; lltcov clean --gone");
        }
        const auto has_runs = [](const ModuleData& module) { return module.runs > 0; };
        if (!findings_.has_problems() &&
            std::none_of(data_.modules.begin(), data_.modules.end(), has_runs)) {
            findings_.note("runs",
                           "no run of this project has left counts in '" + directory + "'" +
                               (has_foreign_ ? ", but runs of other projects have" : "") +
                               "; run the tests, by 'lltcov run -- make check' if that builds "
                               "them, or set LLTCOV_ROOT");
        }
    }

private:
    /// A problem only while the module's output is there: tests build programs, run them and remove
    /// them.
    void tell(const ModuleData& module, const char* kind, const std::string& line)
    {
        QMRFileExists(module.output.c_str()) != 0 ? findings_.add(kind, line)
                                                  : findings_.note(kind, line);
    }

    struct Refused {
        std::size_t dumps = 0;
        std::set<std::string> builds;
        std::string path; ///< of the first
    };

    /// The module of the dump's work area, relative to the project where the path is; null for one
    /// of another project, and for one that is gone, which is noted.
    ModuleData* module_of(const Dump& dump)
    {
        const std::string named = mapped_path(data_.maps, std::string(dump.area));
        const auto [place, is_new] = area_of_name_.emplace(named, "");
        if (is_new) {
            place->second = absolute_path(named[0] == '/' ? named : data_.root + "/" + named);
        }
        const auto module = module_of_area_.find(place->second);
        if (module != module_of_area_.end()) {
            return module->second;
        }
        if (named[0] != '/' || is_inside(named, data_.root)) {
            ++orphans_[named];
        } else {
            has_foreign_ = true;
        }
        return nullptr;
    }

    void refuse(const Dump& dump, const ModuleData& module, const std::string& path)
    {
        Refused& refused = refused_[&module];
        refused.path = refused.dumps++ == 0 ? path : refused.path;
        refused.builds.emplace(dump.buid);
    }

    using Additions = std::vector<std::pair<InstrumentedObject*, DumpedSource*>>;

    /// Finds the objects that the sources of the dump are counts of; false when it is damaged.
    bool match(Dump& dump, const ModuleData& module, const std::string& path, Additions& additions)
    {
        for (DumpedSource& source : dump.sources) {
            const auto object = data_.object_of_symbol.find(std::string(source.symbol));
            if (object == data_.object_of_symbol.end()) {
                tell(module, "sources without records",
                     "'" + path + "' counts '" + std::string(source.symbol) + "', which " +
                         module.module.name +
                         " has no record of: left out; build and run it again");
            } else if (data_.objects[object->second].record.array_bytes != source.size * 8) {
                findings_.add(DAMAGED, "'" + path + "' gives '" + std::string(source.symbol) +
                                           "' " + std::to_string(source.size) +
                                           " counters, its record another number" + AGAIN);
                return false;
            } else {
                additions.emplace_back(&data_.objects[object->second], &source);
            }
        }
        std::sort(additions.begin(), additions.end());
        const auto is_same = [](const auto& a, const auto& b) { return a.first == b.first; };
        if (std::adjacent_find(additions.begin(), additions.end(), is_same) != additions.end()) {
            findings_.add(DAMAGED, "'" + path + "' holds a source twice" + AGAIN);
            return false;
        }
        return true;
    }

    /// All counts of the dump or none: they are read, and have their room, before the first is
    /// added.
    void add(DumpReader& reader, ModuleData& module, const std::string& path)
    {
        Dump& dump = reader.dump();
        const std::string test(dump.test);
        Additions additions;
        if (!match(dump, module, path, additions)) {
            return;
        }
        for (const auto& [object, source] : additions) {
            reader.read_counters(*source);
            Counters& counters = object->runs[test].counters;
            counters.resize(std::max(counters.size(), source->size));
        }
        if (!test.empty()) {
            data_.tests.insert(test);
        }
        for (const auto& [object, source] : additions) {
            RunCounters& sum = object->runs[test];
            join_counters(sum.counters, source->counters, object->record.or_bytes / 8);
            sum.runs = sum_of_counts(sum.runs, dump.runs);
        }
        module.runs = sum_of_counts(module.runs, dump.runs);
    }

    ProjectData& data_;
    Findings& findings_;
    std::map<std::string, ModuleData*> module_of_area_;
    std::map<std::pair<std::string, std::string>, ModuleData*> module_of_build_; ///< area, build id
    std::map<std::string, std::string> area_of_name_; ///< absolute, by what dumps name
    std::map<const ModuleData*, Refused> refused_;
    std::map<std::string, std::size_t> orphans_; ///< by area
    bool has_foreign_ = false;                   ///< dumps of other projects
};

} // namespace

void add_dumps(ProjectData& data, const std::string& directory, Findings& findings)
{
    std::vector<std::string> names;
    for (std::string& name : names_in(directory)) {
        if (is_dump(name)) {
            names.push_back(std::move(name));
        }
    }
    Progress progress("reading dumps", names.size());
    RunReader reader(data, findings);
    for (const std::string& name : names) {
        reader.read(directory + "/" + name);
        progress.step();
    }
    reader.report(directory);
}
