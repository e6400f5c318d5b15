// Object N of a run is the files N.gcno and N.gcda. A run takes over the files of one that has
// ended, as file systems are slow at making thousands of them just after thousands were removed. A
// gcov that fails over one object says nothing of those after it: these are read again, one by one.
#include "lltcov/report/gcov_reader.h"

#include "commonfunc/text.h"
#include "commonfunc/text_lines.h"
#include "contract/record.h"
#include "lltcov/report/child_process.h"
#include "lltcov/report/gcov_choice.h"
#include "lltcov/report/gcov_files.h"
#include "lltcov/report/gcov_json.h"
#include "lltcov/report/recorded_path.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <utility>
#include <vector>

namespace
{

constexpr std::size_t MAX_OBJECTS_PER_RUN = 200;
constexpr std::size_t RUNS_PER_PROCESSOR = 4; ///< short ones, so that all end at about one time
constexpr int FIRST_WITH_CONDITIONS = 14;

/// One call of a gcov, for the objects with these indexes.
struct Run {
    std::string program;
    std::vector<std::size_t> objects;
    std::size_t first_file; ///< number of the first object's files; no other run has it meanwhile
    pid_t pid = 0;

    std::string file(std::size_t object) const { return std::to_string(first_file + object); }
};

class GcovReader
{
public:
    GcovReader(const ObjectReadings& objects, Counting counting, Findings& findings)
        : objects_(objects), counting_(counting), findings_(findings), is_read_(objects.size()),
          progress_("reading counters", objects.size())
    {
    }

    void read()
    {
        std::map<std::string, std::vector<std::size_t>> by_program;
        for (std::size_t i = 0; i < objects_.size(); ++i) {
            const Record& record = *objects_[i]->record;
            const std::string& program = choice_.program_for(record.reader, record.version);
            if (program.empty()) {
                findings_.add("gcov", missing_gcov(record.reader, record.version));
            } else {
                by_program[program].push_back(i);
            }
        }
        for (const auto& [program, indexes] : by_program) {
            const std::size_t parts = number_of_processors() * RUNS_PER_PROCESSOR;
            run_all(program, indexes,
                    std::clamp<std::size_t>(indexes.size() / parts, 1, MAX_OBJECTS_PER_RUN));
            std::vector<std::size_t> missing;
            std::copy_if(indexes.begin(), indexes.end(), std::back_inserter(missing),
                         [this](std::size_t i) { return !is_read_[i]; });
            run_all(program, missing, 1);
            for (const std::size_t i : missing) {
                tell_missing(i);
            }
        }
    }

private:
    /// Runs the program over these objects, so many by one run.
    void run_all(const std::string& program, const std::vector<std::size_t>& indexes,
                 std::size_t objects_per_run)
    {
        std::deque<Run> running;
        std::size_t file = 0;
        for (std::size_t at = 0; at < indexes.size(); at += objects_per_run) {
            const std::size_t end = std::min(at + objects_per_run, indexes.size());
            const auto first = indexes.begin() + static_cast<std::ptrdiff_t>(at);
            if (running.size() == number_of_processors()) {
                finish(running.front());
                file = running.front().first_file;
                running.pop_front();
            }
            running.push_back(
                {program, {first, indexes.begin() + static_cast<std::ptrdiff_t>(end)}, file});
            start(running.back());
            file += objects_per_run;
        }
        for (Run& run : running) {
            finish(run);
        }
    }

    void start(Run& run)
    {
        std::vector<std::string> words = {run.program, "--json-format", "--stdout"};
        if (counting_ >= Counting::branches) {
            words.emplace_back("--branch-probabilities");
        }
        const std::uint32_t version = objects_[run.objects[0]]->record->version;
        if (counting_ >= Counting::conditions && compiler_major(version) >= FIRST_WITH_CONDITIONS) {
            words.emplace_back("--conditions");
        }
        for (std::size_t i = 0; i < run.objects.size(); ++i) {
            const ObjectReading& object = *objects_[run.objects[i]];
            const std::string name = run.file(i);
            directory_.write(name + ".gcno", object.record->notes);
            directory_.write(name + ".gcda", data_file(*object.record, object.counters, 1));
            words.push_back(name + ".gcda");
        }
        run.pid = start_program(words, directory_, run.file(0));
    }

    void finish(Run& run)
    {
        wait_for_program(run.pid);
        if (run.pid == 0) {
            return; // the files hold what an earlier run has written
        }
        const std::string output = directory_.read(run.file(0) + ".out");
        const std::string errors = directory_.read(run.file(0) + ".err");
        for (std::size_t i = 0; i < run.objects.size(); ++i) {
            complaints_[run.objects[i]] = complaint_about(run.file(i), errors);
        }
        for (std::string_view rest = output; !rest.empty();) {
            take(run, split_off(rest, '\n'));
        }
    }

    /// Takes the result of one object, unless gcov could not read its files.
    void take(const Run& run, std::string_view text)
    {
        GcovResult result;
        try {
            result = read_gcov_json(text);
        } catch (const std::runtime_error&) {
            return; // a text that was cut; the object counts as missing
        }
        const auto file = static_cast<std::size_t>(to_int(result.data_file.c_str()));
        if (file < run.first_file || file - run.first_file >= run.objects.size()) {
            return;
        }
        const std::size_t index = run.objects[file - run.first_file];
        if (is_read_[index] || !complaints_[index].empty()) {
            return;
        }
        ObjectReading& object = *objects_[index];
        for (auto& [name, source] : result.sources) {
            const std::string path = source_path(*object.record, result.directory, name);
            const auto [place, is_new] = object.coverage.try_emplace(path);
            is_new ? std::swap(place->second, source) : add_source(place->second, source);
        }
        is_read_[index] = true;
        progress_.step();
    }

    /// The line of gcov's messages that says why the object's files were not read; empty when there
    /// is none.
    static std::string complaint_about(const std::string& name, const std::string& errors)
    {
        for (std::string_view rest = errors; !rest.empty();) {
            std::string line(split_off(rest, '\n'));
            const bool is_about_it =
                begins_with(line, name + ".gcno:") || begins_with(line, name + ".gcda:");
            for (const char* reason :
                 {"mismatch", "corrupted", "cannot open", "not a gcov", "overflowed"}) {
                if (is_about_it && line.find(reason) != line.npos) {
                    return line;
                }
            }
        }
        return "";
    }

    void tell_missing(std::size_t i)
    {
        if (is_read_[i]) {
            return;
        }
        const std::string said = complaints_[i].empty() ? "no result" : complaints_[i];
        const Record& record = *objects_[i]->record;
        findings_.add("unread objects", "'" + record.object + "' is left out: '" +
                                            choice_.program_for(record.reader, record.version) +
                                            "' cannot read its records: " + said +
                                            "; build it again through lltwrapper");
    }

    const ObjectReadings& objects_;
    Counting counting_;
    Findings& findings_;
    TemporaryDirectory directory_;
    GcovChoice choice_;
    std::vector<bool> is_read_;
    std::map<std::size_t, std::string> complaints_; ///< by index
    Progress progress_;
};

} // namespace

void read_gcc_objects(const ObjectReadings& objects, Counting counting, Findings& findings)
{
    if (!objects.empty()) {
        GcovReader(objects, counting, findings).read();
    }
}
