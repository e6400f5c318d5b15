// Records that are gone from LLTTEMP although objects of the link carry them.
#pragma once

#include "toolset/linkdriver/link_command.h"
#include "toolset/linkdriver/link_coverage.h"

/// Leaves the records of the link's coverage symbols again where they are missing, from the objects
/// and the members of libraries that they belong to. Symbols of objects that have none even then
/// are left out of the coverage, with a notice: they may be no more than a text. Needs the work
/// area.
void restore_lost_records(const LinkCommand& link, LinkCoverage& coverage);
