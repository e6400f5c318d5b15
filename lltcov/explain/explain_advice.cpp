// One function per kind of trouble, each a few conditions with their texts. What the wrapper itself
// warns of comes first, in its own words.
#include "lltcov/explain/explain_advice.h"

#include "commonfunc/env.h"
#include "commonfunc/path_name.h"
#include "commonfunc/path_search.h"
#include "commonfunc/shell.h"
#include "commonfunc/text.h"
#include "contract/project_root.h"
#include "lltcov/common/coverage_names.h"
#include "lltcov/common/tool_kind.h"
#include "lltcov/explain/explain_words.h"
#include "lltwrapper/classify.h"
#include "lltwrapper/cmd_parser.h"
#include "lltwrapper/wrapper_state.h"

#include <algorithm>
#include <cstddef>

namespace
{

constexpr char SETTINGS[] =
    "source the project's TUSK_INIT.SH, or ask by 'lltcov run -- lltcov explain -- COMMAND'";

void advise_on_project(const ExplainedStep& step, Advice& advice)
{
    const std::string path = env_text("qmr_current_prj_path");
    if (path.empty()) {
        advice.warnings.push_back(
            std::string(
                "'qmr_current_prj_path' is not set: there is no project to put coverage data in; ") +
            SETTINGS);
    } else if (shell_word(path) != path) {
        advice.warnings.push_back(
            "project path " + quoted(path) +
            " goes into commands as it is; use one without blanks and other characters that the shell acts upon");
    } else if (path[0] != '/' && step.mode != Mode::archive) {
        advice.warnings.push_back(
            "project path " + quoted(path) +
            " is relative: it means another place in each directory of the build; set an absolute one");
    }
    if (!env_is_filled("qmr_coverage_stub_mold")) {
        advice.warnings.push_back(
            std::string("'qmr_coverage_stub_mold' is not set: the stub mode is empty; ") +
            SETTINGS);
    }
}

/// A library's work area and a program of one name cannot be in one place.
void advise_on_places(const ExplainedStep& step, Advice& advice)
{
    const std::string root = root_of_project(env_text("qmr_current_prj_path"));
    const auto warn_of = [&](const std::string& place, const std::string& archive) {
        advice.warnings.push_back(
            quoted(place) + " stands where the coverage data of " + quoted(archive) +
            " would go; set qmr_current_prj_path to a directory of their own, as TUSK_INIT.SH does");
    };
    if (root.empty()) {
        return;
    }
    if (step.mode == Mode::archive) {
        const std::string place = in_place_of_area(root, step.name);
        if (!place.empty()) {
            warn_of(place, step.decision.archive);
        }
    }
    const std::string output = absolute_path(step.decision.output);
    for (const std::string& word : step.command) {
        if (step.mode == Mode::link && ends_with(word, ".a") &&
            output == absolute_path(root) + "/" + module_of_archive(word)) {
            warn_of(output, word);
        }
    }
}

void advise_on_link(const ExplainedStep& step, Advice& advice)
{
    if (!step.forwarded.empty()) {
        return;
    }
    const bool nameless = step.name.empty();
    advice.warnings.push_back(
        "nothing is linked, and the exit status is 0: " +
        (nameless ? "output " + quoted(step.decision.output) +
                        " gives no target name; name it differently or set LLTLD_AVOID_SAME_NAME=1"
                  : "lltwrapper_cfg is " + std::to_string(step.decision.token) +
                        ", which has no link driver; 0 is the usual one"));
}

void advise_on_programs(const ExplainedStep& step, Advice& advice)
{
    const auto& words = step.shell.words;
    const auto look_for = [&](const char* kind, std::size_t i) {
        if (i < words.size() && words[i].live.empty() && program_on_path(words[i].text).empty()) {
            advice.warnings.push_back(kind + quoted(words[i].text) +
                                      " is not found; add its directory to PATH");
        }
    };
    if (step.driver_words > 0) {
        look_for("driver ", 0);
    }
    look_for("tool ", step.driver_words);
}

/// Options whose value is the next argument and may be anything.
bool takes_any_value(const std::string& argument)
{
    const char* const options[] = {"-Xlinker", "-Xassembler", "-Xpreprocessor", "-o", "-MF",
                                   "-MT",      "-MQ",         "-include",       "-z"};
    return is_own_option(argument) ||
           std::find(std::begin(options), std::end(options), argument) != std::end(options);
}

void advise_on_unchanged(const ExplainedStep& step, Advice& advice)
{
    const std::string tool = step.command.empty() ? "" : base_name(step.command[0]);
    if (step.decision.reason == Reason::no_build_step && kind_of_tool(tool) == ToolKind::archiver) {
        advice.warnings.push_back(
            quoted(tool) +
            (strArTools.empty()
                 ? " is no archiver without -artool: no stub is made; call lltwrapper -artool " +
                       tool + " -arsuffix .a " + tool + " ..."
                 : " is not the archiver of -artool, " + quoted(strArTools) +
                       ": no stub is made; name this one"));
    }
    for (const std::string& argument : step.command) {
        if (step.decision.reason == Reason::no_build_step && argument.size() > 2 &&
            argument.compare(0, 2, "-o") == 0) {
            advice.warnings.push_back(
                quoted(argument) +
                " is not seen as an output: nothing is instrumented or registered; write '-o " +
                argument.substr(2) + "'");
        }
    }
}

/// A linker option -E in two arguments lets a link run unchanged.
void advise_on_preprocessing(const ExplainedStep& step, Advice& advice)
{
    const auto& arguments = step.arguments;
    const auto at = std::find_if(arguments.begin(), arguments.end(), [](const std::string& text) {
        return text == "-S" || text == "-E";
    });
    if (at != arguments.begin() && at != arguments.end() && takes_any_value(*(at - 1))) {
        advice.warnings.push_back(
            quoted(*at) + " is the value of " + quoted(*(at - 1)) +
            " and yet makes the command run unchanged; for the linker write -Wl," + *at);
    }
}

void advise_on_options(const ExplainedStep& step, Advice& advice)
{
    if (step.decision.has_archiver && (step.mode == Mode::compile || step.mode == Mode::link)) {
        const char* option = step.mode == Mode::compile ? "-c" : "-o";
        advice.warnings.push_back(std::string("'") + option + "' makes this archiver run a " +
                                  (step.mode == Mode::compile ? "compile" : "link") +
                                  "; write its letter without the dash, as in 'ar rcs'");
    }
    const auto at = std::find(step.arguments.begin(), step.arguments.end(), "-mshort-load-bytes");
    if (at != step.arguments.end()) {
        advice.notes.push_back("'-mshort-load-bytes' and the argument after it are left out");
    }
}

struct LiveRule {
    const char* characters;
    const char* effect;
};

constexpr LiveRule LIVE_RULES[] = {
    {"$`", "the shell expands "},
    {"*?[", "the shell puts the names of matching files in place of "},
    {"~", "the shell makes a home directory of "},
    {"#", "the shell takes the rest of the line for a comment because of "},
    {";|&<>()\n", "the shell ends or redirects the command at "},
    {"{", "a shell with brace lists makes several words because of "},
};

std::string numbered(std::size_t i, const ShellWord& word)
{
    return "word " + std::to_string(i + 1) + " " + bracketed(word.text);
}

void advise_on_live(std::size_t i, const ShellWord& word, Advice& advice)
{
    for (const LiveRule& rule : LIVE_RULES) {
        const std::size_t found = word.live.find_first_of(rule.characters);
        if (found != std::string::npos) {
            const std::string character = visible(word.live.substr(found, 1));
            advice.warnings.push_back(numbered(i, word) + ": " + rule.effect + quoted(character) +
                                      "; put a backslash before it to have it kept");
        }
    }
}

/// Words of the wrapped command that equal none of its arguments: the shell has cut or stripped
/// those.
void advise_on_words(const ExplainedStep& step, Advice& advice)
{
    const std::string stub = std::string("/") + STUB_PREFIX;
    std::string strange;
    for (std::size_t i = step.driver_words; i < step.shell.words.size(); ++i) {
        const ShellWord& word = step.shell.words[i];
        const auto& arguments = step.arguments;
        const bool given =
            std::find(arguments.begin(), arguments.end(), word.text) != arguments.end();
        if (is_own_option(word.text)) {
            advice.warnings.push_back(
                numbered(i, word) +
                ": reaches the tool, since it is the value of another option or not in lower case; put it before the tool");
        } else if (word.live.empty() && !given && word.text != "-Wa,-march=armv7-a" &&
                   word.text.find(stub) == std::string::npos) {
            strange += (strange.empty() ? "" : ", ") + numbered(i, word);
        }
    }
    if (!strange.empty()) {
        advice.warnings.push_back(
            strange +
            ": no argument is so; blanks, quotes and backslashes in arguments that name no existing file are left to the shell: put a backslash before each");
    }
}

void advise_on_shell(const ExplainedStep& step, Advice& advice)
{
    for (std::size_t i = 0; i < step.shell.words.size(); ++i) {
        advise_on_live(i, step.shell.words[i], advice);
    }
    advise_on_words(step, advice);
    if (step.shell.open != '\0') {
        advice.warnings.push_back(std::string("the shell refuses the command: ") + step.shell.open +
                                  " is never closed; put a backslash before it");
    }
}

} // namespace

std::string quoted(const std::string& text)
{
    return "'" + text + "'";
}

Advice advise(const ExplainedStep& step)
{
    Advice advice;
    advice.warnings = step.said;
    if (step.answered) {
        return advice;
    }
    if (step.mode != Mode::unchanged) {
        advise_on_project(step, advice);
        advise_on_places(step, advice);
    }
    if (step.decision.reason == Reason::archiver) {
        advise_on_archive(step, advice);
        if (step.decision.archive.empty()) {
            return advice; // the rest would only add to the confusion
        }
    }
    if (step.mode == Mode::link) {
        advise_on_link(step, advice);
    }
    advise_on_programs(step, advice);
    if (step.mode == Mode::unchanged) {
        advise_on_unchanged(step, advice);
    }
    if (step.decision.reason == Reason::preprocess_or_assemble) {
        advise_on_preprocessing(step, advice);
    }
    advise_on_options(step, advice);
    advise_on_shell(step, advice);
    return advice;
}
