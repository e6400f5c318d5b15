// Sources in a link command ("gcc a.c -o a"): compiled by the compiler driver first.
#pragma once

#include "toolset/common/driver_call.h"
#include "toolset/linkdriver/link_command.h"

/// Compiles each source of the command by `lltcc` into an object below LLTTEMP and returns the
/// command with the objects in the sources' places. Returns the command itself, so that the tool
/// compiles the sources plainly, when the command leaves files that are named after its output,
/// when the sources come from a response file, and when a compilation fails: the tool then tells
/// why. Needs the settings.
LinkCommand compile_sources(const DriverCall& call, const LinkCommand& link);
