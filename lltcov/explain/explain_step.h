// What the wrapper would do with a command, by its own operations up to the point where something
// would be made or run.
#pragma once

#include "lltcov/explain/explain_words.h"
#include "lltwrapper/step_plan.h"

#include <cstddef>
#include <string>
#include <vector>

/// A command explained.
struct ExplainedStep : Plan {
    std::vector<std::string> arguments; ///< of the wrapper
    std::vector<std::string> command;   ///< those of them that are not its own, the tool first
    bool answered = false;              ///< the wrapper answers itself: version, help, usage
    std::vector<std::string> named;     ///< members after the archive, also in response files
    std::vector<std::string> plain;     ///< those of them without coverage symbols
    std::string name;                   ///< module or target; empty where there is none
    std::string work_area;              ///< in archive steps with a named archive
    std::string rebuilt;                ///< the rebuilt command
    std::string forwarded;              ///< what runs; empty when nothing does
    ShellWords shell;                   ///< the words of `forwarded`
    std::size_t driver_words = 0;       ///< how many of them come before the rebuilt command
    std::string prints;                 ///< what the wrapper prints until then
    std::vector<std::string> said;      ///< its lines on standard error, without its name
};

/// Explains the command that follows "lltwrapper". Runs and makes nothing, but sets the
/// wrapper's state and environment as the command would: to be called once in a process.
ExplainedStep explain_step(const std::vector<std::string>& command);
