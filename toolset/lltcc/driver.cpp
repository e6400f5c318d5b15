// The compiler does the whole compile itself, with all its rules about outputs, dependency files
// and diagnostics: it is only told to count, and to look for its assembler in a directory where
// this program stands under the name `as`. That role puts the counters into the source's own array
// and its record into the object; the record is left for the archive and link steps from there, so
// that an object from a compiler cache has it too. What fails that way is compiled plainly.
#include "toolset/lltcc/driver.h"

#include "commonfunc/env.h"
#include "commonfunc/file_io.h"
#include "commonfunc/file_ops.h"
#include "commonfunc/own_files.h"
#include "commonfunc/path_name.h"
#include "commonfunc/shell.h"
#include "contract/places.h"
#include "contract/project_root.h"
#include "contract/record.h"
#include "contract/stub_modes.h"
#include "toolset/common/driver_call.h"
#include "toolset/common/records.h"
#include "toolset/common/turn_lock.h"
#include "toolset/counters/counter_text.h"
#include "toolset/lltcc/command.h"
#include "toolset/lltcc/compiler.h"
#include "toolset/lltcc/handover.h"
#include "toolset/lltcc/stub_role.h"

#include <algorithm>
#include <cstdio>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace
{

/// One wrapped command: what its compiles have in common.
struct Compilation {
    std::string area; ///< LLTTEMP/codemeasure of the project; empty without one
    int stub_mode = 1;
    Launchers launchers;
    CompileCommand command;
    Compiler compiler;
    std::string tools;
};

/// Options beside those of the specs; the user's own stay as they are.
Words options_of(const Compilation& compilation)
{
    const bool is_clang = compilation.compiler.kind == Compiler::Kind::clang;
    const bool is_read_early = env_int("TimerPolicy") == 1 || env_int("SignalPolicy") == 1;
    std::string update = env_text("LLTCOV_UPDATE");
    Words options;
    if (compilation.command.has_lto) {
        options.emplace_back("-fno-lto"); // else there is nothing to assemble yet
    }
    if (is_clang) {
        for (const char* const* option = CLANG_OPTIONS; *option != nullptr; ++option) {
            options.emplace_back(*option);
        }
        update = is_read_early && update.empty() ? "atomic" : update;
    } else {
        // GCC 11 drops tables that nothing but a section refers to, when it optimises.
        const bool is_old = compilation.compiler.major == 11;
        options.push_back("-specs=" + compilation.tools + (is_old ? "/gcc11.specs" : "/gcc.specs"));
        // A precompiled header made without counters is not used, which is no error.
        options.emplace_back("-Wno-invalid-pch");
        if (is_read_early) {
            // Counts are read while loops run, so no loop may keep its counter in a register.
            options.emplace_back("-fno-tree-loop-im");
        }
        if (env_text("LLTCOV_COUNT") == "conditions" && compilation.compiler.major >= 14) {
            options.emplace_back("-fcondition-coverage");
            // It warns of a decision with too many terms, which is no fault of the source.
            options.emplace_back("-Wno-error=coverage-too-many-conditions");
        }
    }
    if (!update.empty()) {
        options.push_back("-fprofile-update=" + update);
    }
    return options;
}

Words instrumented(const Compilation& compilation, const CompileInput& input)
{
    Words words = words_for_input(compilation.command, input);
    words.insert(words.begin() + 1, "-B" + compilation.tools + "/");
    const Words options = options_of(compilation);
    words.insert(std::find(words.begin(), words.end(), "--"), options.begin(), options.end());
    words.insert(words.begin(), compilation.launchers.kept.begin(),
                 compilation.launchers.kept.end());
    return words;
}

/// The prefix of commands that compile a stub of the module: this program takes part in them.
std::string stub_command(const CompileCommand& command)
{
    std::string text = shell_word(program_directory() + "/lltcc") + " " + STUB_ROLE;
    for (const std::string& word : command.kept) {
        text += " " + (word[0] == '-' && shell_word(word)[0] == '.' ? shell_word(word).substr(2)
                                                                    : shell_word(word));
    }
    return text;
}

std::string object_of(const CompileCommand& command, const CompileInput& input)
{
    const std::string name = base_name(input.path);
    return command.output.empty() ? name.substr(0, name.rfind('.')) + ".o" : command.output;
}

/// What is known of the source before the compiler counts.
Record begun_record(const Compilation& compilation, const CompileInput& input)
{
    Record record;
    record.symbol = "-";
    record.source = absolute_path(input.path);
    record.object = absolute_path(object_of(compilation.command, input));
    record.stub_mode = compilation.stub_mode;
    record.compile_command = stub_command(compilation.command);
    record.path_maps = compilation.command.path_maps;
    record.compiler = compilation.compiler.kind == Compiler::Kind::clang ? CounterSource::clang
                                                                         : CounterSource::gcc;
    record.reader = compilation.compiler.reader;
    record.assembler = {compilation.compiler.assembler};
    return record;
}

/// Leaves the records that the object brings along.
void leave_records_of(const Compilation& compilation, const Record& begun)
{
    std::string object;
    if (read_whole_file(begun.object, object) != Reading::done) {
        notice("cannot read '%s', which was just made: do two builds run at once?",
               begun.object.c_str());
        return;
    }
    const std::vector<Record> records = records_of(object);
    for (const Record& record : records) {
        leave_records(compilation.area, record, object, SourceState::as_compiled);
    }
    if (records.empty()) {
        notice("'%s' has no counters: something in front of the compiler made it elsewhere",
               begun.object.c_str());
    }
}

/// What the compiler must not count, as regular expressions: what the user has named, and its own
/// headers where that changes no count of other files. When it optimises, it puts lines of the
/// user's into functions of those headers before it places the counters.
std::string uncounted(const Compilation& compilation)
{
    const CompileCommand& command = compilation.command;
    return command.excluded +
           (command.is_optimised ? "" : ";" + compilation.compiler.headers + ";^/usr/include/");
}

/// Runs the compile that counts and leaves its records; its status, and in `trouble` why it must be
/// repeated without counting: objects without records could not be linked.
int compile_counting(const Compilation& compilation, const CompileInput& input,
                     std::string& trouble, std::string* errors = nullptr)
{
    try {
        const Record begun = begun_record(compilation, input);
        const Handover handover(begun, uncounted(compilation));
        const int status = run_program(instrumented(compilation, input),
                                       {nullptr, nullptr, errors, handover.environment()});
        trouble = handover.trouble();
        if (status == 0 && trouble.empty()) {
            leave_records_of(compilation, begun);
        }
        return status;
    } catch (const std::runtime_error& error) {
        trouble = error.what();
        return 1;
    }
}

/// The compile after one that counts has failed. What the compiler has to say was said already,
/// unless the assembler role stood in its way.
int compile_plainly(const Compilation& compilation, const CompileInput& input, const Words& plain,
                    std::string trouble)
{
    std::string errors;
    int status = run_program(plain, {nullptr, nullptr, &errors});
    if (status == 0 && trouble.empty()) {
        // A compiler that was killed has not refused, and make would keep the object.
        std::string errors_again;
        if (compile_counting(compilation, input, trouble, &errors_again) == 0 && trouble.empty()) {
            std::fputs(errors_again.c_str(), stderr);
            return 0;
        }
        status = run_program(plain, {nullptr, nullptr, &errors});
    }
    if (status == 0) {
        notice("compiled without coverage: %s: %s",
               trouble.empty() ? "the compiler refuses to count" : trouble.c_str(),
               input.path.c_str());
    } else if (!trouble.empty()) {
        std::fputs(errors.c_str(), stderr);
    }
    return status;
}

/// `plain` is the same compile as it was wrapped.
int compile_input(const Compilation& compilation, const CompileInput& input, const Words& plain)
{
    if (!input.is_source) {
        notice("compiled without coverage: '%s' is assembly", input.path.c_str());
        return run_program(plain);
    }
    // Two at once would take each other's objects; one within another cannot wait.
    std::optional<TurnLock> turn;
    if (!is_within_compile()) {
        turn.emplace(compilation.area, absolute_path(object_of(compilation.command, input)));
    }
    std::string trouble;
    const int status = compile_counting(compilation, input, trouble);
    return status == 0 && trouble.empty() ? 0 : compile_plainly(compilation, input, plain, trouble);
}

/// Why the sources cannot be instrumented; empty when they can.
std::string refusal(const Compilation& compilation)
{
    const CompileCommand& command = compilation.command;
    if (!command.why_plain.empty()) {
        return command.why_plain;
    }
    if (compilation.area.empty()) {
        return "its project is not known, set qmr_current_prj_path";
    }
    if (own_file("lltcc.d/as").empty()) {
        return "lltcc.d/as is missing from the installation";
    }
    if (counter_mode(compilation.stub_mode).owner == ARRAYS_OF_NOBODY) {
        return "no stub of mode " + std::to_string(compilation.stub_mode) +
               " declares counters; choose another one by qmr_coverage_stub_mold";
    }
    const auto has_line_end = [](const std::string& word) { return word.find('\n') != word.npos; };
    return std::any_of(command.words.begin(), command.words.end(), has_line_end)
               ? "a word of the command holds a line end"
               : "";
}

/// The same of the compiler, which is asked only when it may be needed.
std::string refusal_of(const Compiler& compiler, const std::string& name)
{
    const bool is_gcc = compiler.kind == Compiler::Kind::gcc;
    const int needed = is_gcc ? 11 : 14;
    if (compiler.kind == Compiler::Kind::other) {
        return "'" + name + "' is neither GCC nor clang";
    }
    return compiler.major >= needed ? ""
                                    : "'" + name + "' is " + (is_gcc ? "GCC " : "clang ") +
                                          std::to_string(compiler.major) +
                                          ", which is older than " + std::to_string(needed);
}

} // namespace

int run_driver(const Words& arguments)
{
    const DriverCall call = read_driver_call(arguments);
    if (call.command.empty()) {
        return 2;
    }
    Words compiler = call.command;
    Compilation compilation;
    compilation.launchers = take_launchers(compiler);
    compilation.command = read_command(compiler);
    if (!call.project.empty()) {
        compilation.area = places::temporary_area(absolute_path(root_of_project(call.project)));
    }
    compilation.stub_mode = call.stub_mode;
    compilation.tools = own_file("lltcc.d");
    std::string why_plain = refusal(compilation);
    if (why_plain.empty()) {
        compilation.compiler = know_compiler(compilation.area, compilation.command);
        why_plain = refusal_of(compilation.compiler, compiler[0]);
    }
    if (!why_plain.empty()) {
        notice("compiled without coverage: %s", why_plain.c_str());
        return become_program(call.command);
    }
    for (const std::string& launcher : compilation.launchers.skipped) {
        notice("'%s' is left out: what it brings would have no coverage", launcher.c_str());
    }
    int status = 0;
    for (const CompileInput& input : compilation.command.inputs) {
        const bool is_only = compilation.command.inputs.size() == 1;
        const Words plain = is_only ? call.command : words_for_input(compilation.command, input);
        status = std::max(status, compile_input(compilation, input, plain));
    }
    return status;
}
