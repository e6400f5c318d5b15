// The wrapper's road with its last steps left out: no work area, no stub, no shell. An archive step
// is looked at as far as its members; what the coverage work would print is not known.
#include "lltcov/explain/explain_step.h"

#include "commonfunc/Caddis_func.h"
#include "commonfunc/message.h"
#include "commonfunc/path_name.h"
#include "commonfunc/response_file.h"
#include "commonfunc/text.h"
#include "lltld/work_area.h"
#include "lltwrapper/archive_prepare.h"
#include "lltwrapper/cmd_parser.h"
#include "lltwrapper/forward_cmd.h"
#include "lltwrapper/mode_dispatch.h"
#include "lltwrapper/wrapper_state.h"

#include <algorithm>
#include <iterator>

namespace
{

/// An argument vector as `main` gets it.
class ArgumentVector
{
public:
    explicit ArgumentVector(const std::vector<std::string>& command) : words_(command)
    {
        words_.insert(words_.begin(), "lltwrapper");
        for (std::string& word : words_) {
            pointers_.push_back(&word[0]);
        }
        pointers_.push_back(nullptr);
    }

    int argc() const { return static_cast<int>(words_.size()); }
    char** argv() { return pointers_.data(); }

private:
    std::vector<std::string> words_;
    std::vector<char*> pointers_;
};

/// The arguments without the wrapper's own options and their values.
std::vector<std::string> without_own_options(const std::vector<std::string>& arguments)
{
    std::vector<std::string> command;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (is_own_option(arguments[i])) {
            ++i;
        } else {
            command.push_back(arguments[i]);
        }
    }
    return command;
}

/// The members that an archive command names: what stands behind the archive and is no option.
std::vector<std::string> named_members(const std::vector<std::string>& command,
                                       const std::string& archive)
{
    std::vector<std::string> members;
    const auto at = std::find(command.begin(), command.end(), archive);
    std::copy_if(
        at == command.end() ? at : at + 1, command.end(), std::back_inserter(members),
        [](const std::string& word) { return !word.empty() && word[0] != '-' && word[0] != '@'; });
    return members;
}

void look_at_members(int argc, char** argv, ExplainedStep& step)
{
    const auto arguments = with_response_files({argv + 1, argv + argc});
    step.members.with_coverage = members_with_coverage(arguments);
    step.members.named = named_members(without_own_options(arguments), step.decision.archive);
    for (const std::string& member : step.members.named) {
        const std::string path = absolute_path(member);
        const auto& counted = step.members.with_coverage;
        if (std::none_of(counted.begin(), counted.end(),
                         [&](const ScannedObject& object) { return object.path == path; })) {
            step.members.plain.push_back(member);
        }
    }
}

void prepare_archive_step(int argc, char** argv, ExplainedStep& step)
{
    if (!load_archive_settings()) {
        return; // the archive step goes on, with a work area that is none
    }
    const std::string root = g_lxprj->szCovDictPath;
    name_work_area(root, strLinkName);
    copy_bounded(g_lxprj->szLLTTEMP, absolute_path(root) + "/LLTTEMP");
    warn_if_work_area_is_shared();
    step.name = strLinkName;
    step.work_area = g_lxprj->szCovDictPath;
    look_at_members(argc, argv, step);
    step.mode = step.members.with_coverage.empty() ? Mode::unchanged : Mode::archive;
}

/// The command that runs in this mode.
std::string forwarded_command(ExplainedStep& step)
{
    switch (step.mode) {
    case Mode::compile:
        GenerateCMD2LLTCC();
        step.name = "LLTTEMP";
        return strLLTCC;
    case Mode::link:
        GenerateCMD2LLTLD();
        step.name = strLinkName;
        return strLLTLD;
    case Mode::kernel_image:
        append_image_stub();
        break;
    case Mode::archive:
        GenerateCMD2AR();
        return strLLTAR;
    case Mode::unchanged:
        break;
    }
    return pOriginalCmd;
}

void take_the_road(int argc, char** argv, ExplainedStep& step)
{
    step.answered = answer_without_command(argc, argv);
    if (step.answered) {
        return;
    }
    rebuild_command(argc, argv);
    step.rebuilt = pOriginalCmd;
    step.decision = decide(argc, argv);
    step.mode = step.decision.mode;
    apply_decision(step.decision);
    read_project();
    if (step.mode == Mode::archive) {
        prepare_archive_step(argc, argv, step);
    }
    step.forwarded = forwarded_command(step);
}

} // namespace

bool is_own_option(const std::string& argument)
{
    const char* const options[] = {"-qmr_current_prj_path",
                                   "-projectname",
                                   "-qmr_coverage_stub_mold",
                                   "-lltwrapper_envfile",
                                   "-objsuffix",
                                   "-binsuffix",
                                   "-artool",
                                   "-arsuffix"};
    return std::any_of(std::begin(options), std::end(options),
                       [&](const char* option) { return equals_nocase(argument.c_str(), option); });
}

ExplainedStep explain_step(const std::vector<std::string>& command)
{
    ExplainedStep step;
    step.arguments = command;
    step.command = without_own_options(command);
    ArgumentVector arguments(command);
    {
        HeldMessages messages;
        take_the_road(arguments.argc(), arguments.argv(), step);
        step.prints = messages.output;
        step.said = messages.warnings;
    }
    step.shell = split_for_shell(step.forwarded);
    if (step.mode == Mode::compile || (step.mode == Mode::link && !step.forwarded.empty())) {
        const std::size_t driver_part = step.forwarded.size() - step.rebuilt.size();
        step.driver_words =
            std::min(split_for_shell(step.forwarded.substr(0, driver_part)).words.size(),
                     step.shell.words.size());
    }
    return step;
}
