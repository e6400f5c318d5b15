// The wrapper's road with its last steps left out: no work area, no stub, no shell. An archive step
// is looked at as far as its members; what the coverage work would print is not known.
#include "lltcov/explain/explain_step.h"

#include "commonfunc/Caddis_func.h"
#include "commonfunc/message.h"
#include "commonfunc/path_name.h"
#include "commonfunc/text.h"
#include "contract/names.h"
#include "contract/places.h"
#include "lltld/object_scan.h"
#include "lltld/work_area.h"
#include "lltwrapper/archive_prepare.h"
#include "lltwrapper/classify.h"
#include "lltwrapper/cmd_parser.h"
#include "lltwrapper/forward_cmd.h"
#include "lltwrapper/mode_dispatch.h"
#include "lltwrapper/wrapper_state.h"

#include <algorithm>
#include <iterator>

namespace
{

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

/// The members that an archive command names: what follows the archive and is no option.
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

/// Finds the members that the archive step named, and those without coverage.
void look_at_members(ExplainedStep& step)
{
    step.named = named_members(without_own_options(step.archive.arguments), step.decision.archive);
    const auto& counted = step.archive.members;
    std::copy_if(step.named.begin(), step.named.end(), std::back_inserter(step.plain),
                 [&](const std::string& member) {
                     const std::string path = absolute_path(member);
                     return std::none_of(
                         counted.begin(), counted.end(),
                         [&](const ScannedObject& object) { return object.path == path; });
                 });
}

/// Names the work area and the temporary area that an archive step would enter.
bool name_areas(const std::string& root, const std::string& module)
{
    name_work_area(root, module);
    return copy_bounded(g_lxprj->szLLTTEMP, places::temporary_directory(absolute_path(root)));
}

void take_the_road(ExplainedStep& step)
{
    step.answered = answer_without_command(step.arguments);
    if (step.answered) {
        return;
    }
    rebuild_command(step.arguments);
    step.rebuilt = pOriginalCmd;
    Plan& plan = step;
    plan = plan_step(step.arguments, name_areas);
    read_project();
    step.forwarded = build_command(step.mode);
    if (step.archive.is_named) {
        step.work_area = g_lxprj->szCovDictPath;
        look_at_members(step);
    }
    if (step.mode == Mode::compile) {
        step.name = TEMPORARY_NAME;
    } else if (step.mode == Mode::link || step.archive.is_named) {
        step.name = strLinkName;
    }
}

} // namespace

ExplainedStep explain_step(const std::vector<std::string>& command)
{
    ExplainedStep step;
    step.arguments = command;
    step.command = without_own_options(command);
    {
        HeldMessages messages;
        take_the_road(step);
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
