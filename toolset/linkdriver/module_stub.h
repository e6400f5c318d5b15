// The module of a link: its work area, its database, and its stub.
#pragma once

#include "contract/linked_libraries.h"
#include "lltld/object_scan.h"
#include "toolset/linkdriver/link_command.h"

#include <set>
#include <string>
#include <vector>

/// Loads the project settings. False when the project path is not known.
bool load_settings();

/// Chooses the module's name and takes its work area PROJECT/NAME/codemeasure until the program
/// ends. The name is `wanted` with "_so" after it for a shared library, else "_exe": a static
/// library of the same stem has the work area without a suffix, and a program that is built in the
/// project's directory itself takes that place. Where another output has the work area, or a
/// library of this link (`taken`) has a module of that name, "_2", "_3" and so on follow.
bool choose_work_area(const std::string& wanted, const std::string& output,
                      const std::set<std::string>& taken);

/// Removes a library's work area that stands in the place of the output, which the link is about to
/// write into the project's root; a notice says so.
void make_room_for_output(const std::string& project, const std::string& output);

/// Lists the libraries in the work area: a later build of another library of the same name takes
/// their work areas, and only this list identifies their runs.
void record_libraries(const std::vector<LinkedLibrary>& libraries);

/// Brings the work area up to date with these objects and assembles the stub that registers their
/// counters; nothing is done where the last link has left both as they would be. Returns the stub
/// object, or an empty path after the library's messages.
std::string make_stub(const LinkCommand& link, const std::vector<ScannedObject>& objects);
