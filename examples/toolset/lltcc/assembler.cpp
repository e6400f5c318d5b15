// A failure leaves no object; the driver role then sees the reason in the notices and repeats the
// compile without instrumentation.
#include "assembler.h"

#include "asm_rewrite.h"
#include "commonfunc/Caddis_func.h"
#include "job.h"
#include "probe_map.h"
#include "records.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <unistd.h>

namespace
{

/// The assembler's own command line.
struct AssemblerCall {
    Words options;      ///< everything but the input
    std::string input;  ///< empty for standard input
    std::string object; ///< "a.out" unless named
};

AssemblerCall read_call(const Words& arguments)
{
    AssemblerCall call;
    call.object = "a.out";
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& word = arguments[i];
        const bool has_value = word == "-o" || word == "-I" || word == "--defsym" ||
                               word == "--debug-prefix-map" || word == "--MD";
        if (has_value && i + 1 < arguments.size()) {
            call.object = word == "-o" ? arguments[i + 1] : call.object;
            call.options.push_back(word);
            call.options.push_back(arguments[++i]);
        } else if (!word.empty() && word[0] != '-') {
            call.input = word;
        } else if (word != "-" && word != "--") {
            call.options.push_back(word);
        }
    }
    return call;
}

/// Without line numbers in the text these would make the assembler number the text's own lines.
void drop_debug_options(Words& options)
{
    options.erase(std::remove_if(options.begin(), options.end(),
                                 [](const std::string& word) {
                                     return word.rfind("--gdwarf", 0) == 0 || word == "-g";
                                 }),
                  options.end());
}

std::string read_input(const std::string& path)
{
    std::string text;
    if (path.empty()) {
        char buffer[65536];
        for (ssize_t n = 0; (n = ::read(STDIN_FILENO, buffer, sizeof buffer)) > 0;) {
            text.append(buffer, static_cast<std::size_t>(n));
        }
    } else if (read_whole_file(path, text) == Reading::not_opened) {
        throw NotInstrumentable("cannot read '" + path + "'");
    }
    return text;
}

/// The command's source that the text was made from.
std::string source_of(const AsmText& text, const Job& job)
{
    const std::string name = base_name(text.main_name);
    for (const std::string& source : job.sources) {
        if (base_name(source) == name) {
            return source;
        }
    }
    return job.sources.empty() ? "" : job.sources[0];
}

int assemble(const Job& job, const Words& options, const std::string& text)
{
    Words command = options;
    command.insert(command.begin(), job.assembler);
    std::string errors;
    const int status = run_program(command, {&text, nullptr, &errors});
    if (status != 0) {
        throw NotInstrumentable("the assembler does not take the counters");
    }
    std::fputs(errors.c_str(), stderr);
    return status;
}

int instrument(const Job& job, AssemblerCall call)
{
    const std::string text = read_input(call.input);
    SourceFiles files(job.path_maps);
    const AsmText assembly =
        scan_assembly(text, files, job.drop_debug_info ? Marks::stand_in : Marks::count);
    if (job.drop_debug_info) {
        drop_debug_options(call.options);
    }
    const std::vector<std::size_t> probes = choose_probes(assembly);
    Record record;
    record.source = source_of(assembly, job);
    record.object = absolute_path(call.object);
    record.compile_command = job.compile_command;
    record.stub_mode = job.stub_mode;
    record.probes = probes.size();
    record.symbol = symbol_of(record, text);
    Rewriting how;
    how.array = "g_QMRCovData_" + record.symbol;
    how.counters = counters_of(job.stub_mode);
    how.define_array = object_defines_array(job.stub_mode);
    how.drop_debug_info = job.drop_debug_info;
    assemble(job, call.options, rewrite(assembly, probes, how));
    if (!probes.empty()) {
        record.probe_map = probe_map(assembly, probes, record, files);
        leave_records(job.area, record);
    }
    return 0;
}

} // namespace

int run_assembler(const Words& arguments)
{
    const char* text = std::getenv(JOB_VARIABLE);
    const Job job = job_from(text != nullptr ? text : "");
    try {
        return instrument(job, read_call(arguments));
    } catch (const std::exception& error) {
        const std::string why = error.what();
        if (::write(job.notices, why.data(), why.size()) < 0) {
            std::fprintf(stderr, "lltcc: %s\n", why.c_str());
            return 1;
        }
        return 0; // of a failure the compiler would tell, before it is clear that it is one
    }
}
