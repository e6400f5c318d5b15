// The compiler does the whole compile itself, with all its rules about outputs, dependency files
// and diagnostics: it is only told to call probes, and to look for its assembler in a directory
// where this program stands under the name `as`. What fails that way is compiled plainly.
#include "driver.h"

#include "command.h"
#include "commonfunc/Caddis_func.h"
#include "examples/toolset/common/driver_call.h"
#include "job.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

namespace
{

/// LLTTEMP/codemeasure of the project, of the platform when one tree is built for several.
std::string temporary_area(const std::string& project_path)
{
    std::string root =
        names_project_file(project_path) ? split_path(project_path).directory : project_path;
    if (env_int("isOverlappedCompile") == 1) {
        root += "/" + env_text(env_text("PlatformToken").c_str());
    }
    return absolute_path(root.empty() ? "." : root) + "/LLTTEMP/codemeasure";
}

/// The directory that holds this program as `as`: beside the program in the build tree, under
/// ../lib when installed. Empty when there is none.
std::string assembler_directory()
{
    char program[513] = {};
    QMRGetCurrProcName(program);
    const std::string home = split_path(std::string(program) + ".").directory;
    for (const char* place : {"/lltcc.d", "/../lib/lltcov/lltcc.d"}) {
        if (QMRFileExists((home + place + "/as").c_str()) != 0) {
            return home + place;
        }
    }
    return "";
}

/// The assembler that the compiler would run without us: asked each time, for it depends on the
/// compiler and its options (-B, --target).
std::string real_assembler(const Words& command)
{
    Words query = command;
    query.push_back("-print-prog-name=as");
    std::string answer;
    std::string errors;
    run_program(query, {nullptr, &answer, &errors});
    answer.erase(answer.find_last_not_of("\r\n") + 1);
    return answer.empty() ? "as" : answer;
}

constexpr const char* GCC_PROBES = "-fsanitize-coverage=trace-pc";

/// The optimisation level stays the user's. Left out of it are only passes that would let the
/// report say something else than the source: those that let two places share one piece of code and
/// so one probe, those that move code to where it runs although its line does not, and inlining
/// behind the point where gcov counts (small functions are inlined before it, and stay so). Whether
/// one is still needed shows tests/toolset/compare_gcov.sh.
constexpr const char* GCC_OPTIMIZING[] = {
    // joining equal code
    "-fno-crossjumping", "-fno-ipa-icf", "-fno-tree-tail-merge", "-fno-code-hoisting",
    "-fno-ssa-phiopt", "-fno-tree-cselim",
    // moving and splitting code
    "-fno-tree-pre", "-fno-tree-loop-im", "-fno-tree-sink", "-fno-thread-jumps", "-fno-split-paths",
    "-fno-schedule-insns", "-fno-schedule-insns2", "-fno-move-loop-invariants",
    "-fno-if-conversion", "-fno-if-conversion2",
    // copying and specialising whole functions
    "-fno-inline-functions-called-once", "-fno-partial-inlining", "-fno-ipa-cp", "-fno-ipa-sra",
    "--param=max-inline-insns-single=0", "--param=max-inline-insns-auto=0",
    "--param=max-inline-insns-small=0", "--param=max-inline-insns-size=0",
    // increments behind calls use a register that a call may change
    "-fno-ipa-ra",
    // lines of statements that vanish
    "-gstatement-frontiers"};

constexpr const char* CLANG_OPTIONS[] = {
    "-fsanitize-coverage=edge,trace-pc,no-prune",
    "-fno-integrated-as", // so that there is an assembler to stand in for
};

Words instrumented(const Words& command, const CompileCommand& compile, const std::string& tools)
{
    Words more;
    if (compile.is_clang) {
        more.assign(std::begin(CLANG_OPTIONS), std::end(CLANG_OPTIONS));
    } else {
        // A precompiled header made with other debug information is not used, which is no error.
        more.insert(more.end(), {GCC_PROBES, "-Wno-invalid-pch"});
        if (compile.optimizes) {
            more.insert(more.end(), std::begin(GCC_OPTIMIZING), std::end(GCC_OPTIMIZING));
        }
    }
    if (!compile.has_debug_info) {
        more.push_back("-g1");
    }
    if (compile.has_lto) {
        more.push_back("-fno-lto"); // else there is nothing to assemble yet
    }
    Words out = command;
    out.insert(out.begin() + 1, "-B" + tools + "/");
    out.insert(std::find(out.begin(), out.end(), "--"), more.begin(), more.end());
    return out;
}

Job job_of(const DriverCall& call, const CompileCommand& compile)
{
    Job job;
    job.area = temporary_area(call.project);
    job.stub_mode = call.stub_mode;
    job.drop_debug_info = !compile.has_debug_info;
    job.assembler = real_assembler(call.command);
    for (const std::string& word : compile.kept) {
        job.compile_command += (job.compile_command.empty() ? "" : " ");
        job.compile_command +=
            word[0] == '-' && shell_word(word)[0] == '.' ? shell_word(word).substr(2) : word;
    }
    for (const std::string& source : compile.sources) {
        job.sources.push_back(absolute_path(source));
    }
    job.path_maps = compile.path_maps;
    job.notices = anonymous_file("");
    ::fcntl(job.notices, F_SETFD, 0); // the assembler role inherits it
    return job;
}

/// The compile without instrumentation after one with it has failed. What the compiler has to say
/// was said already, unless the assembler role stood in its way.
int compile_plainly(const Words& command, const std::string& source, const std::string& trouble)
{
    std::string errors;
    const int status = run_program(command, {nullptr, nullptr, &errors});
    if (status == 0) {
        notice("compiled without coverage: %s: %s",
               trouble.empty() ? "the compiler refuses to instrument" : trouble.c_str(),
               source.c_str());
    } else if (!trouble.empty()) {
        std::fputs(errors.c_str(), stderr);
    }
    return status;
}

} // namespace

int run_driver(const Words& arguments)
{
    const DriverCall call = read_driver_call(arguments);
    const Words& command = call.command;
    if (command.empty()) {
        return 2;
    }
    const Words compiler = without_launcher(command);
    CompileCommand compile = read_command(compiler);
    const std::string tools = assembler_directory();
    if (tools.empty()) {
        compile.why_plain = "lltcc.d/as is missing from the installation";
    }
    if (call.stub_mode == 3) {
        compile.why_plain = "no stub of mode 3 declares counters; choose another one by "
                            "qmr_coverage_stub_mold";
    }
    if (!compile.why_plain.empty()) {
        notice("compiled without coverage: %s", compile.why_plain.c_str());
        return become_program(command);
    }
    const Job job = job_of(call, compile);
    ::setenv(JOB_VARIABLE, to_text(job).c_str(), 1);
    // A cache under the compiler's own name would hand out objects without records.
    ::setenv("CCACHE_DISABLE", "1", 1);
    const int status = run_program(instrumented(compiler, compile, tools));
    const std::string trouble = content_of(job.notices);
    ::unsetenv(JOB_VARIABLE);
    if (status != 0 || !trouble.empty()) {
        return compile_plainly(command, compile.sources[0], trouble);
    }
    return 0;
}
