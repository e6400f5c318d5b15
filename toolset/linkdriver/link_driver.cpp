// The coverage side never decides whether a link succeeds: where its work fails, the command runs
// without it. Only objects that need counter arrays of unknown size cannot be linked any more, and
// that is said.
#include "toolset/linkdriver/link_driver.h"

#include "commonfunc/Caddis_func.h"
#include "commonfunc/env.h"
#include "commonfunc/message.h"
#include "commonfunc/own_files.h"
#include "commonfunc/path_name.h"
#include "contract/names.h"
#include "contract/stub_modes.h"
#include "toolset/common/driver_call.h"
#include "toolset/common/process.h"
#include "toolset/linkdriver/link_command.h"
#include "toolset/linkdriver/link_coverage.h"
#include "toolset/linkdriver/link_file.h"
#include "toolset/linkdriver/lost_records.h"
#include "toolset/linkdriver/module_stub.h"
#include "toolset/linkdriver/plain_functions.h"
#include "toolset/linkdriver/plain_object.h"
#include "toolset/linkdriver/source_step.h"

#include <algorithm>
#include <cstdlib>
#include <set>
#include <string>
#include <vector>

namespace
{

/// Set for everything that is run from here: the tool may call a wrapped linker itself.
constexpr char GUARD[] = "LLTLD_RUNS";

/// The static runtime: `LLTCOV_RUNTIME` (the file or its directory), or that of "-m32", or of the
/// target that the tool's name begins with, or of this machine, as installed or in a build tree.
/// Empty when it is not found.
std::string find_runtime(const Words& command)
{
    const std::string file = "liblltcov_rt.a";
    const std::string named = env_text("LLTCOV_RUNTIME");
    Words candidates = {named, named + "/" + file};
    if (std::find(command.begin(), command.end(), "-m32") != command.end()) {
        candidates.push_back(own_file("m32/" + file));
    }
    const std::string name = command[0].substr(command[0].rfind('/') + 1);
    for (std::size_t end = name.rfind('-'); end != name.npos && end > 0;
         end = name.rfind('-', end - 1)) {
        candidates.push_back(own_file(name.substr(0, end) + "/" + file));
    }
    candidates.push_back(own_file(file));
    for (const std::string& path : candidates) {
        if (kind_of(path) == FileKind::archive) {
            return absolute_path(path);
        }
    }
    return "";
}

/// An option of the linker, for the tool of this command.
std::string linker_option(const LinkCommand& link, const std::string& option)
{
    return (link.is_linker ? "" : "-Wl,") + option;
}

/// An input of the linker, whatever language a compiler was told to expect ("-x").
void add_input(const LinkCommand& link, const std::string& path, Words& words)
{
    if (!link.is_linker) {
        words.emplace_back("-Xlinker");
    }
    words.push_back(path);
}

/// The words go before the first input with coverage: there the tool certainly reads inputs, the
/// libraries that they need come later, and the stub's destructor is one of the last to run.
Words with_words(const LinkCommand& link, const LinkCoverage& coverage, const Words& added)
{
    Words words = link.words;
    const std::size_t at = std::min(coverage.first, words.size());
    words.insert(words.begin() + static_cast<std::ptrdiff_t>(at), added.begin(), added.end());
    return words;
}

/// Calls that end the process without destructors go to the runtime first, where it has functions
/// for them.
void add_wrapped_calls(const LinkCommand& link, const std::string& runtime, Words& words)
{
    std::string content;
    if (!read_input(runtime, content) || content.find("__wrap__exit") == content.npos) {
        return;
    }
    words.insert(words.end(), {"-u", "__wrap__exit"});
    for (const char* name : {"_exit", "_Exit"}) {
        words.push_back(linker_option(link, std::string("--wrap=") + name));
    }
}

Words with_runtime(const LinkCommand& link, const LinkCoverage& coverage, const std::string& stub,
                   const std::string& runtime)
{
    Words added;
    if (!stub.empty()) {
        add_input(link, stub, added);
    }
    // Inputs after the runtime need it too, so it is taken whether it is needed yet or not.
    added.insert(added.end(), {"-u", "QMR_CreateCoverageListExt"});
    if (counter_mode(g_lxprj->stubmode).owner == ARRAYS_OF_OBJECTS) {
        // No member refers to an array of such a stub.
        for (const std::string& module : coverage.modules) {
            added.insert(added.end(), {"-u", TEST_LOADER_PREFIX + module});
        }
    }
    add_wrapped_calls(link, runtime, added);
    add_input(link, runtime, added);
    return with_words(link, coverage, added);
}

/// Without coverage, but with everything that the inputs refer to.
int link_plainly(const LinkCommand& link, const LinkCoverage& coverage, const Streams& streams = {})
{
    const std::string plain = make_plain_object(coverage.objects, plain_functions(link));
    Words added;
    add_input(link, plain, added);
    return plain.empty() ? 1 : run_program(with_words(link, coverage, added), streams);
}

bool was_interrupted(int status)
{
    return status > 128;
}

int link_with_coverage(const LinkCommand& link, const LinkCoverage& coverage,
                       const std::string& stub, const std::string& runtime)
{
    Words words = with_runtime(link, coverage, stub, runtime);
    const int status = run_program(words);
    if (status == 0 || was_interrupted(status)) {
        return status;
    }
    std::string text;
    const Streams unseen = {nullptr, &text, &text};
    if (coverage.has_twins) {
        words.insert(words.begin() + static_cast<std::ptrdiff_t>(coverage.first),
                     linker_option(link, "--allow-multiple-definition"));
        if (run_program(words, unseen) == 0) {
            notice(
                "'%s' is linked all the same: two of its static libraries have the same coverage symbols and are reported as part of it; give the libraries different names",
                link.output.c_str());
            return 0;
        }
    }
    if (link_plainly(link, coverage, unseen) == 0) {
        // A linker that was killed has not refused, and make would keep the output.
        if (run_program(with_runtime(link, coverage, stub, runtime), unseen) == 0) {
            return 0;
        }
        link_plainly(link, coverage, unseen);
        notice(
            "'%s' is linked all the same, but reports no coverage: it does not link with the runtime '%s', see above",
            link.output.c_str(), runtime.c_str());
        return 0;
    }
    return status;
}

/// The link when no stub or runtime can be had.
int link_without_coverage(const LinkCommand& link, const LinkCoverage& coverage, bool has_settings,
                          const char* reason)
{
    if (has_settings && link_plainly(link, coverage) == 0) {
        notice("'%s' reports no coverage: %s", link.output.c_str(), reason);
        return 0;
    }
    notice(
        "'%s' is linked without coverage: %s; its instrumented objects refer to counter arrays that nothing defines, so compile them again, or without lltcc",
        link.output.c_str(), reason);
    return run_program(link.words);
}

int link_module(const LinkCommand& link, LinkCoverage& coverage, const std::string& name)
{
    if (name.empty() || !choose_work_area(name, link.output, coverage.modules)) {
        return link_without_coverage(link, coverage, true, "its work area cannot be created");
    }
    if (!link.has_c_library) {
        return link_without_coverage(link, coverage, true, "the runtime needs a C library (-lc)");
    }
    const std::string runtime = find_runtime(link.words);
    if (runtime.empty()) {
        return link_without_coverage(link, coverage, true,
                                     "liblltcov_rt.a is not found, set LLTCOV_RUNTIME");
    }
    record_libraries(coverage.libraries);
    restore_lost_records(link, coverage);
    std::string stub;
    if (!coverage.objects.empty()) {
        stub = make_stub(link, coverage.objects);
        if (stub.empty()) {
            const std::string log = env_text("LLTWRAPPER_LOG");
            const std::string reason =
                "its stub could not be made, see " + (log.empty() ? "above" : "'" + log + "'");
            return link_without_coverage(link, coverage, true, reason.c_str());
        }
    }
    return link_with_coverage(link, coverage, stub, runtime);
}

} // namespace

int drive_link(int argc, char** argv)
{
    const DriverCall call = read_driver_call(Words(argv + 1, argv + argc));
    if (call.command.empty()) {
        return 2;
    }
    log_output();
    const bool is_nested = std::getenv(GUARD) != nullptr;
    ::setenv(GUARD, "1", 1);
    ::unsetenv("LLT_WRAP");
    LinkCommand link = read_link_command(call.command);
    if (is_nested || !link.links || link.is_relocatable) {
        return become_program(call.command);
    }
    make_room_for_output(call.project.empty() ? env_text("qmr_current_prj_path") : call.project,
                         link.output);
    LinkCoverage coverage = find_coverage(link);
    if (coverage.is_empty() && link.sources.empty()) {
        return become_program(call.command);
    }
    if (!call.project.empty()) {
        ::setenv("qmr_current_prj_path", call.project.c_str(), 0);
        ::setenv("qmr_coverage_stub_mold", std::to_string(call.stub_mode).c_str(), 0);
    }
    if (!load_settings()) {
        return link_without_coverage(link, coverage, false,
                                     "its project is not known, set qmr_current_prj_path");
    }
    if (!link.sources.empty()) {
        link = compile_sources(call, link);
        coverage = find_coverage(link);
    }
    return coverage.is_empty() ? become_program(link.words)
                               : link_module(link, coverage, call.name);
}
