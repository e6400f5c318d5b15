// Dumps that programs of this project wrote elsewhere become dumps of this project: their work area
// is named as it is here, and each gets a name that stands for where it comes from. So what is
// merged again counts once, and two machines that wrote files of one name count both.
#include "commonfunc/directory.h"
#include "commonfunc/file_io.h"
#include "commonfunc/path_name.h"
#include "commonfunc/text.h"
#include "commonfunc/text_lines.h"
#include "contract/dump_file.h"
#include "contract/dump_format.h"
#include "contract/names.h"
#include "contract/record.h"
#include "lltcov/common/command_line.h"
#include "lltcov/common/commands.h"
#include "lltcov/common/console.h"
#include "lltcov/common/project.h"
#include "lltcov/report/coverage.h"
#include "lltcov/report/opened_dump.h"
#include "lltcov/report/project_data.h"
#include "lltcov/report/whole_project.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>
#include <unordered_map>
#include <utility>
#include <vector>

namespace
{

/// Whether the counters can be those from before and more; the last `or_words` join by "or".
bool has_grown(const Counters& now, const Counters& before, std::size_t or_words)
{
    for (std::size_t i = 0; i < now.size() && i < before.size(); ++i) {
        if (i < now.size() - or_words ? now[i] < before[i] : (now[i] | before[i]) != now[i]) {
            return false;
        }
    }
    return now.size() == before.size();
}

class Merger
{
public:
    Merger(const ProjectData& data, std::string target, std::string prefix, Findings& findings)
        : data_(data), target_(std::move(target)), prefix_(std::move(prefix)), findings_(findings)
    {
    }

    void merge_directory(const std::string& directory)
    {
        const std::string path = absolute_path(directory);
        if (path == target_) {
            findings_.add("places", "'" + directory +
                                        "' is where the counts of this project are: nothing to "
                                        "merge; unset LLTCOV_ROOT when it names that directory");
            return;
        }
        bool has_dumps = false;
        for (const std::string& name : names_in(path)) {
            if (is_dump(name)) {
                has_dumps = true;
                merge_file(directory + "/" + name, (prefix_.empty() ? path : prefix_) + "/" + name);
            }
        }
        if (!has_dumps) {
            findings_.add("places", "'" + directory +
                                        "' holds no dump: name the directory that was LLTCOV_ROOT "
                                        "where the tests ran, or a copy of it");
        }
    }

    void report() const
    {
        std::printf("merged %zu dumps into '%s'", added_ + updated_, target_.c_str());
        if (updated_ > 0) {
            std::printf(", %zu of them in the place of an earlier state", updated_);
        }
        if (known_ > 0) {
            std::printf("; %zu were merged before", known_);
        }
        std::printf("\n");
    }

private:
    /// `origin` stands for the place that the file comes from.
    void merge_file(const std::string& path, const std::string& origin)
    {
        try {
            const DumpReader locked = open_dump(path); // no program writes it meanwhile
            std::string bytes;
            if (read_whole_file(path, bytes) == Reading::empty) {
                return; // its program was killed before it had written anything
            }
            const Dump dump = read_dump(bytes);
            const ModuleData* const module = module_of(dump, path);
            if (module != nullptr && fits(dump, *module, path)) {
                const std::string test = dump.test.empty() ? "" : prefix_ + std::string(dump.test);
                add(moved_dump(bytes, module->module.area, test), origin);
            }
        } catch (const FormatError& error) {
            findings_.add("damaged dumps", path + ":" + std::to_string(error.line) + ": " +
                                               error.what() + ": left out; copy it again");
        } catch (const std::exception& error) {
            findings_.add("damaged dumps",
                          "'" + path + "' cannot be read: " + error.what() + ": left out");
        }
    }

    /// The work area here of a module that the dump names as it is elsewhere.
    std::string area_of(const Dump& dump) const
    {
        const std::string named = mapped_path(data_.maps, std::string(dump.area));
        return absolute_path(named[0] == '/' ? named : data_.root + "/" + named);
    }

    /// The module that the dump is of, in its build; null after a line.
    const ModuleData* module_of(const Dump& dump, const std::string& path)
    {
        const std::string area = area_of(dump);
        const ModuleData* other = nullptr;
        for (const ModuleData& module : data_.modules) {
            if (module.module.area == area) {
                other = &module;
                if (module.buid == dump.buid) {
                    return other;
                }
            }
        }
        if (other != nullptr) {
            findings_.add("dumps of other builds",
                          "'" + path + "' is of build " + std::string(dump.buid) + " of " +
                              other->module.name + ", '" + other->output + "' is of build " +
                              other->buid +
                              ": left out; run the tests there with what is built now");
        } else {
            findings_.add(
                "dumps of other projects",
                "'" + path + "' is of '" + std::string(dump.area) + "', which is no module of '" +
                    data_.directory +
                    "': left out; if the project has another path there, name both by --map "
                    "THERE=HERE");
        }
        return nullptr;
    }

    const InstrumentedObject* object_of(const DumpedSource& source) const
    {
        const auto found = data_.object_of_symbol.find(std::string(source.symbol));
        return found == data_.object_of_symbol.end() ? nullptr : &data_.objects[found->second];
    }

    /// Whether all arrays are those of the build; else a line says so.
    bool fits(const Dump& dump, const ModuleData& module, const std::string& path)
    {
        for (const DumpedSource& source : dump.sources) {
            const InstrumentedObject* const object = object_of(source);
            if (object == nullptr || object->record.array_bytes != source.size * DUMP_WORD) {
                findings_.add(
                    "dumps of other sources",
                    "'" + path + "' counts '" + std::string(source.symbol) + "' otherwise than " +
                        module.module.name +
                        " is built: left out; run the tests there with what is built now");
                return false;
            }
        }
        return true;
    }

    /// Whether the dump can be a later state of the other one.
    bool is_later(const Dump& now, const Dump& then) const
    {
        const auto grows = [this](const DumpedSource& a, const DumpedSource& b) {
            const InstrumentedObject* const object = object_of(a);
            return a.symbol == b.symbol && object != nullptr &&
                   has_grown(a.counters, b.counters, object->record.or_bytes / DUMP_WORD);
        };
        return now.buid == then.buid && now.area == then.area && now.test == then.test &&
               now.runs >= then.runs &&
               std::equal(now.sources.begin(), now.sources.end(), then.sources.begin(),
                          then.sources.end(), grows);
    }

    /// Counts grow, so a file that has more than it had is a later state of it. One that has less
    /// of something holds other runs, which were written where the first ones had been removed.
    void add(const std::string& bytes, const std::string& origin)
    {
        for (std::size_t number = 0;; ++number) {
            const std::string path = target_ + "/merged." + hex_digits(fnv1a(origin)) + "." +
                                     std::to_string(number) + DUMP_SUFFIX;
            std::string before;
            const bool is_new = read_whole_file(path, before) != Reading::done;
            if (bytes == before) {
                ++known_;
            } else if (!is_new && !is_later(read_dump(bytes), read_dump(before))) {
                continue;
            } else if (replace_file(path, bytes) != Writing::done) {
                findings_.add("places", "'" + path + "' cannot be written: " +
                                            std::strerror(errno) + "; merge again when it can");
            } else {
                ++(is_new ? added_ : updated_);
            }
            return;
        }
    }

    const ProjectData& data_;
    std::string target_; ///< directory of the project's dumps
    std::string prefix_; ///< of tests' names
    Findings& findings_;
    std::size_t added_ = 0;
    std::size_t updated_ = 0;
    std::size_t known_ = 0;
};

} // namespace

int run_merge(const Arguments& arguments)
{
    const CommandLine line(arguments, {}, {"--map", "--prefix", "--project"});
    if (line.operands().empty()) {
        throw UsageError("name the directories with the dumps");
    }
    const std::string prefix = line.value("--prefix");
    if (std::any_of(prefix.begin(), prefix.end(), [](unsigned char c) { return c < ' '; })) {
        throw UsageError("a prefix has no control characters");
    }
    Findings findings;
    const std::string root = project_root(line);
    const ProjectData data = read_modules(root, findings, path_maps(line));
    const std::string target = dump_root(root);
    if (!has_modules(data, findings)) {
        findings.print();
        return 1;
    }
    std::error_code error;
    std::filesystem::create_directories(target, error); // else the first file tells why
    Merger merger(data, absolute_path(target), prefix, findings);
    for (const std::string& directory : line.operands()) {
        merger.merge_directory(directory);
    }
    merger.report();
    const bool is_written = finish_output();
    findings.print();
    return is_written && !findings.has_problems() ? 0 : 1;
}
