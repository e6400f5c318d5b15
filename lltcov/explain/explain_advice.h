// What a build engineer should know about an explained command.
#pragma once

#include "lltcov/explain/explain_step.h"

#include <string>
#include <vector>

/// Each line says what, where and what to do.
struct Advice {
    std::vector<std::string> warnings; ///< the command does not do what one would expect
    std::vector<std::string> notes;    ///< it does, but this is worth knowing
};

/// Everything about the command, the words that the shell sees, and the environment.
Advice advise(const ExplainedStep& step);

/// The part of it that is about archive steps.
void advise_on_archive(const ExplainedStep& step, Advice& advice);

/// The text in single quotes, for messages.
std::string quoted(const std::string& text);
