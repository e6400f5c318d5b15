// A failure leaves no object; the driver role then sees the reason and repeats the compile without
// counters. The section of the record is left out of links (flag "e"), and a source without code
// has a record too: it shows that this assembler made the object.
#include "toolset/lltcc/assembler.h"

#include "commonfunc/file_io.h"
#include "commonfunc/file_ops.h"
#include "commonfunc/path_search.h"
#include "commonfunc/text.h"
#include "contract/names.h"
#include "contract/record.h"
#include "contract/stub_modes.h"
#include "toolset/common/records.h"
#include "toolset/counters/counter_text.h"
#include "toolset/lltcc/handover.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <fcntl.h>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <vector>

namespace
{

/// A part of what every coverage symbol is a hash of: a change gives all sources new symbols.
constexpr const char* FORMAT_VERSION = "lltcc 3";

/// The stamp in the compiler's notes, another one in each compile: recorded as 0, as in data files.
constexpr std::size_t STAMP_AT = 8;
constexpr std::size_t STAMP_SIZE = 4;

/// The assembler's own command line.
struct AssemblerCall {
    Words options;     ///< everything but the input
    Words target;      ///< those of them that choose the target
    std::string input; ///< empty for standard input
};

/// Not a listing, debug information, a place of includes, or what prints the version.
bool chooses_target(const std::string& option)
{
    return is_one_of(option, {"-a32", "-a64"}) ||
           (!is_one_of(option.substr(0, 2), {"-a", "-I", "-g", "-v"}) &&
            !begins_with(option, "--g"));
}

AssemblerCall read_call(const Words& arguments)
{
    AssemblerCall call;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& word = arguments[i];
        const bool has_value =
            is_one_of(word, {"-o", "-I", "--defsym", "--debug-prefix-map", "--MD"});
        if (has_value && i + 1 < arguments.size()) {
            call.options.push_back(word);
            call.options.push_back(arguments[++i]);
        } else if (!word.empty() && word[0] != '-') {
            call.input = word;
        } else if (word != "-" && word != "--") {
            call.options.push_back(word);
            if (chooses_target(word)) {
                call.target.push_back(word);
            }
        }
    }
    return call;
}

std::string content_of_path(const std::string& path)
{
    std::string text;
    if (read_whole_file(path, text) != Reading::done) {
        throw NotInstrumentable("cannot read '" + path + "'");
    }
    return text;
}

/// Joins what the driver knows and what text and command say.
Record complete_record(Record record, const CounterText& text, const AssemblerCall& call,
                       std::string notes)
{
    static_cast<RecordedCounters&>(record) = text.record;
    record.assembler.insert(record.assembler.end(), call.target.begin(), call.target.end());
    if (notes.size() >= STAMP_AT + STAMP_SIZE) {
        notes.replace(STAMP_AT, STAMP_SIZE, STAMP_SIZE, '\0');
    }
    record.notes = std::move(notes);
    record.symbol = // of all that is known but itself
        symbol_of(record.source, {FORMAT_VERSION, to_bytes(record), with_array(text, "")});
    return record;
}

/// The directives that make the array known, and put the record into a section of its own.
std::string head_and_record(const Record& record, int record_file)
{
    std::string text;
    if (record.array_bytes != 0) {
        const std::string array = ARRAY_PREFIX + record.symbol;
        text = "\t.hidden\t" + array + "\n";
        if (counter_mode(record.stub_mode).owner == ARRAYS_OF_OBJECTS) {
            text += "\t.comm\t" + array + "," + std::to_string(record.array_bytes) + "," +
                    std::to_string(ARRAY_ALIGNMENT) + "\n";
        }
    }
    return text + "\t.section\t" + RECORD_SECTION + ",\"e\",%progbits\n\t.incbin\t\"/proc/" +
           std::to_string(::getpid()) + "/fd/" + std::to_string(record_file) + "\"\n\t.text\n";
}

int assemble(const HandedOver& job, const AssemblerCall& call)
{
    const std::string text =
        call.input.empty() ? content_of(STDIN_FILENO) : content_of_path(call.input);
    const bool is_clang = job.begun.compiler == CounterSource::clang;
    const CounterText counters = is_clang ? read_clang_text(text) : read_gcc_text(text);
    const Record record = complete_record(
        job.begun, counters, call,
        is_clang || counters.record.array_bytes == 0 ? "" : content_of_path(job.notes));
    const int record_file = anonymous_file(to_bytes(record));
    const std::string input =
        head_and_record(record, record_file) + with_array(counters, ARRAY_PREFIX + record.symbol);
    Words command = call.options;
    command.insert(command.begin(), job.begun.assembler.at(0));
    std::string errors;
    if (run_program(command, {&input, nullptr, &errors}) != 0) {
        throw NotInstrumentable("the assembler does not take the counters");
    }
    std::fputs(errors.c_str(), stderr);
    return 0;
}

} // namespace

int run_assembler(const Words& arguments)
{
    const HandedOver job = handed_over();
    try {
        return assemble(job, read_call(arguments));
    } catch (const std::exception& error) {
        const std::string why = error.what();
        const int file = ::open(job.trouble.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
        if (file < 0 || !write_all(file, why.data(), why.size())) {
            notice("%s", why.c_str());
            return 1;
        }
        return 0; // of a failure the compiler would tell, before it is clear that it is one
    }
}

void run_next_assembler(char** argv)
{
    const std::string own = program_directory() + "/lltcc.d/as";
    const auto is_own = [&](const std::string& directory) {
        std::error_code unused;
        return std::filesystem::equivalent(directory + "/as", own, unused);
    };
    const std::vector<std::string> all = path_directories();
    const auto after = std::find_if(all.rbegin(), all.rend(), is_own).base();
    const std::string next = find_program({after, all.end()}, "as");
    ::execv(next.c_str(), argv);
    throw std::runtime_error("there is no assembler after lltcc's own on PATH");
}
