// Part N is the files N.proftext (counters as text), N.profdata (as the reader wants them) and
// N.objects (its command line). A part that fails is reported and left out.
#include "lltcov/report/llvm_reader.h"

#include "commonfunc/file_ops.h"
#include "commonfunc/text_lines.h"
#include "contract/record.h"
#include "lltcov/report/child_process.h"
#include "lltcov/report/lcov_reader.h"
#include "lltcov/report/llvm_tools.h"
#include "lltcov/report/recorded_path.h"

#include <algorithm>
#include <ctime>
#include <deque>
#include <map>
#include <utility>
#include <vector>

namespace
{

/// Objects that are read together.
struct Part {
    ObjectReadings objects;
    LlvmTools tools;
    std::string name; ///< of its files
    Coverage coverage;
};

/// The text as one word of a file of arguments.
std::string quoted(const std::string& text)
{
    std::string word = "\"";
    for (const char c : text) {
        word += c == '"' || c == '\\' ? "\\" : "";
        word += c;
    }
    return word + "\"\n";
}

class LlvmReader
{
public:
    LlvmReader(std::vector<Part>& parts, Counting counting, Findings& findings)
        : parts_(parts), counting_(counting), findings_(findings),
          progress_("reading counters", parts.size())
    {
    }

    void read()
    {
        std::vector<Part*> readable;
        for (Part& part : parts_) {
            if (prepare(part)) {
                readable.push_back(&part);
            }
        }
        std::vector<Part*> merged;
        run_all(
            readable, [this](const Part& part) { return merge_words(part); },
            [&](Part& part) { merged.push_back(&part); });
        run_all(
            merged, [this](const Part& part) { return export_words(part); },
            [this](Part& part) { take(part); });
    }

private:
    /// Writes the files of the part; false when there is nothing to read it by.
    bool prepare(Part& part)
    {
        if (part.objects.empty()) {
            return false;
        }
        part.name = std::to_string(&part - parts_.data());
        const Record& record = *part.objects[0]->record;
        const auto [tools, is_new] = tools_.try_emplace(record.reader);
        if (is_new) {
            tools->second = find_llvm_tools(record.reader);
        }
        part.tools = tools->second;
        if (part.tools.cov.empty()) {
            findings_.add(
                "LLVM's tools",
                "'llvm-profdata' and 'llvm-cov' are missing, which read the counters of clang: install the package llvm");
            return false;
        }
        std::string arguments;
        for (const ObjectReading* object : part.objects) {
            arguments += (arguments.empty() ? "" : "-object\n") + quoted(object->file);
        }
        directory_.write(part.name + ".objects", arguments);
        directory_.write(part.name + ".proftext", profile_text(part.objects));
        return true;
    }

    std::vector<std::string> merge_words(const Part& part) const
    {
        return {part.tools.profdata, "merge", "-o", part.name + ".profdata",
                part.name + ".proftext"};
    }

    std::vector<std::string> export_words(const Part& part) const
    {
        return {part.tools.cov, "export", "-format=lcov",
                "-instr-profile=" + part.name + ".profdata", "@" + part.name + ".objects"};
    }

    /// Runs a program for each part, on all processors; `done` follows where it succeeds.
    template <typename Words, typename Done>
    void run_all(const std::vector<Part*>& parts, const Words& words, const Done& done)
    {
        std::deque<std::pair<Part*, pid_t>> running;
        const auto finish = [&] {
            const auto [part, program] = running.front();
            running.pop_front();
            if (wait_for_program(program) == 0) {
                done(*part);
            } else {
                tell_failure(*part, words(*part)[0]);
            }
        };
        for (Part* part : parts) {
            if (running.size() == number_of_processors()) {
                finish();
            }
            running.emplace_back(part, start_program(words(*part), directory_, part->name));
        }
        while (!running.empty()) {
            finish();
        }
    }

    void take(Part& part)
    {
        progress_.step();
        try {
            for (auto& [name, source] : read_lcov(directory_.read(part.name + ".out"))) {
                if (counting_ < Counting::branches) {
                    source.blocks.clear();
                }
                add_source(part.coverage[path_of(part, name)], source);
            }
        } catch (const FormatError&) {
            part.coverage.clear();
            tell_failure(part, part.tools.cov);
        }
    }

    /// The real path of a source. A prefix that the compiler was told to replace may stand in the
    /// record of any of the objects.
    static std::string path_of(const Part& part, const std::string& name)
    {
        for (const ObjectReading* object : part.objects) {
            if (!object->record->path_maps.empty()) {
                std::string path = source_path(*object->record, "", name);
                if (QMRFileExists(path.c_str()) != 0) {
                    return path;
                }
            }
        }
        return source_path(*part.objects[0]->record, "", name);
    }

    void tell_failure(const Part& part, const std::string& program)
    {
        const std::string errors = directory_.read(part.name + ".err");
        const std::string said = errors.empty() ? "no result" : errors.substr(0, errors.find('\n'));
        findings_.add(
            "unread objects",
            "'" + part.objects[0]->record->object +
                (part.objects.size() > 1 ? "' and others are left out: '" : "' is left out: '") +
                program + "' fails: " + said + "; build it again through lltwrapper");
    }

    std::vector<Part>& parts_;
    Counting counting_;
    Findings& findings_;
    TemporaryDirectory directory_;
    std::map<std::string, LlvmTools> tools_; ///< by recorded directory
    Progress progress_;
};

} // namespace

std::string profile_text(const ObjectReadings& objects)
{
    // A first line in plain characters: one with other characters would be taken for another
    // format.
    std::string text = "# counts\n";
    for (const ObjectReading* object : objects) {
        for (const RecordedFunction& function : object->record->functions) {
            text += function.name + "\n" + std::to_string(function.hash) + "\n";
            std::string counts;
            std::size_t number = 0;
            for (const CounterRun& run : function.counters) {
                number += run.number;
                for (std::size_t i = 0; i < run.number; ++i) {
                    counts += std::to_string(object->counters.at(run.offset / 8 + i)) + "\n";
                }
            }
            text += std::to_string(number) + "\n" + counts + "\n";
        }
    }
    return text;
}

void read_clang_objects(const ObjectReadings& objects, Counting counting, Findings& findings)
{
    std::vector<Part> parts;
    for (ObjectReading* object : objects) {
        parts.push_back({{object}, {}, "", {}});
    }
    LlvmReader(parts, counting, findings).read();
    for (Part& part : parts) {
        part.objects[0]->coverage = std::move(part.coverage);
    }
}

Coverage read_clang_together(const ObjectReadings& objects, Counting counting, Findings& findings)
{
    std::vector<Part> parts = {{objects, {}, "", {}}};
    LlvmReader(parts, counting, findings).read();
    return std::move(parts[0].coverage);
}
