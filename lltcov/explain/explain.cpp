// lltcov explain -- COMMAND...: what the wrapper would do with a command, one labelled line per
// answer. The work is in explain_step (the wrapper's own code) and explain_advice (the warnings).
#include "commonfunc/env.h"
#include "commonfunc/path_name.h"
#include "commonfunc/text.h"
#include "lltcov/common/command_line.h"
#include "lltcov/common/commands.h"
#include "lltcov/common/project.h"
#include "lltcov/explain/explain_advice.h"
#include "lltcov/explain/explain_step.h"
#include "lltcov/explain/explain_words.h"
#include "lltwrapper/classify.h"
#include "lltwrapper/driver_path.h"
#include "lltwrapper/mode_dispatch.h"
#include "lltwrapper/wrapper_state.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace
{

/// The arguments of the subcommand: what follows "--", or everything when the first one is no
/// option. Options before it go to the command line.
std::vector<std::string> wrapped_command(const Arguments& arguments)
{
    const auto end = std::find(arguments.begin(), arguments.end(), "--");
    const bool is_plain = !arguments.empty() && arguments[0].compare(0, 1, "-") != 0;
    const CommandLine line(is_plain ? Arguments() : Arguments(arguments.begin(), end), {},
                           {"--project"});
    if (line.has("--project")) {
        ::setenv("qmr_current_prj_path", own_directory(line.value("--project")).c_str(), 1);
    }
    std::vector<std::string> command;
    if (is_plain) {
        command = arguments;
    } else if (end != arguments.end()) {
        command.assign(end + 1, arguments.end());
    }
    if (command.empty() || !line.operands().empty()) {
        throw UsageError("explain needs '--' and a command after it");
    }
    if (base_name(command[0]) == "lltwrapper") {
        command.erase(command.begin());
    }
    return command;
}

/// Prints the text after its label, further lines below it.
void put(const char* label, const std::string& text)
{
    std::vector<std::string> lines;
    strsplit_v(text.c_str(), '\n', lines);
    for (const std::string& line : lines) {
        std::printf("%-11s%s\n", label, visible(line).c_str());
        label = "";
    }
}

void put_if_filled(const char* label, const std::string& text)
{
    if (!text.empty()) {
        put(label, text);
    }
}

const char* mode_name(const ExplainedStep& step)
{
    if (step.answered) {
        return "none: lltwrapper answers itself and wraps nothing";
    }
    switch (step.mode) {
    case Mode::unchanged:
        return "unchanged: the command runs without instrumentation";
    case Mode::compile:
        return "compile: the instrumenting compiler driver runs";
    case Mode::link:
        return "link: a link driver runs";
    case Mode::kernel_image:
        return "kernel image: the command runs with the image's stub appended";
    case Mode::archive:
        return "archive: the library's coverage work, then the archiver with the stub inserted";
    }
    return "";
}

std::string archiver_reason(const ExplainedStep& step)
{
    const std::string archiver = "archiver " + quoted(strArTools) + " (-artool), ";
    if (step.decision.archive.empty()) {
        return archiver + "no archive";
    }
    const std::size_t named = step.named.size();
    const std::size_t counted = named - step.plain.size();
    return archiver + "archive " + quoted(step.decision.archive) + ", " + std::to_string(counted) +
           " of " + std::to_string(named) + (named == 1 ? " member" : " members") + " instrumented";
}

std::string matches(const Decision& decision)
{
    const auto name = [](const TargetMatch& match, const char* list) {
        return match.name.empty() ? "" : "key " + quoted(match.key) + " of " + list + " ";
    };
    return name(decision.builtin, "LLT_TargetName") + name(decision.module, "LLT_TargetName_KO");
}

std::string reason_text(const ExplainedStep& step)
{
    const Decision& decision = step.decision;
    switch (decision.reason) {
    case Reason::preprocess_or_assemble:
        return "-S or -E among the arguments";
    case Reason::compile_option:
        return "-c among the arguments";
    case Reason::module_information:
        return "output " + quoted(decision.output) + ", and lltwrapper_cfg is 2";
    case Reason::output_option:
        return "a separate -o, and no -c";
    case Reason::kernel_target:
        return "lltwrapper_cfg is 1: " + matches(decision) + "in " + quoted(decision.output_path);
    case Reason::no_kernel_target:
        return "lltwrapper_cfg is 1: no key of LLT_TargetName and LLT_TargetName_KO in " +
               quoted(decision.output_path);
    case Reason::kernel_image_step:
        return "lltwrapper_cfg is 1: " + quoted(decision.output) + " is linked for a kernel image";
    case Reason::no_kernel_image_step:
        return "lltwrapper_cfg is 1, no target is listed, and " + quoted(decision.output) +
               " is no step of a kernel image";
    case Reason::archiver:
        return archiver_reason(step);
    case Reason::no_build_step:
        return "no -c, no separate -o, no archiver of -artool";
    }
    return "";
}

const char* status_text(const ExplainedStep& step)
{
    if (step.answered || step.forwarded.empty()) {
        return "0";
    }
    if (env_text("LLTWRAPPER_EXACT_STATUS") == "1") {
        return "the command's own";
    }
    if (status_of(step.mode) == Status::zero_or_one) {
        return "0, or 1 when the command fails";
    }
    return "0, also when the command fails (LLTWRAPPER_EXACT_STATUS=1 gives its own)";
}

void put_words(const ShellWords& shell)
{
    const char* label = "words";
    for (std::size_t i = 0; i < shell.words.size(); ++i) {
        std::printf("%-11s%3zu %s\n", label, i + 1, bracketed(shell.words[i].text).c_str());
        label = "";
    }
}

void put_all(const char* label, const std::vector<std::string>& texts)
{
    for (const std::string& text : texts) {
        put(label, text);
    }
}

/// What is printed, without colours and without blanks and line ends around it.
std::string plain_text(std::string text)
{
    for (std::size_t at = text.find("\033["); at != text.npos; at = text.find("\033[", at)) {
        text.erase(at, text.find('m', at) - at + 1);
    }
    const char* const blanks = " \r\n";
    text.resize(text.find_last_not_of(blanks) + 1);
    return text.erase(0, text.find_first_not_of(blanks));
}

} // namespace

int run_explain(const Arguments& arguments)
{
    put_drivers_on_path(); // as the wrapper does
    const ExplainedStep step = explain_step(wrapped_command(arguments));
    const Advice advice = advise(step);
    put("mode", mode_name(step));
    if (!step.answered) {
        put("because", reason_text(step));
    }
    put_if_filled("name", step.name);
    put_if_filled("work area", step.work_area);
    put_if_filled("rebuilt", step.rebuilt);
    put_if_filled("forwarded", step.forwarded);
    put_words(step.shell);
    put_if_filled("prints", plain_text(step.prints));
    put("status", status_text(step));
    put_all("warning", advice.warnings);
    put_all("note", advice.notes);
    return advice.warnings.empty() ? 0 : 1;
}
