// Whether the stub that the last link of this output has left would be made in the same way again.
#pragma once

#include "lltld/object_scan.h"
#include "toolset/linkdriver/link_command.h"

#include <string>
#include <vector>

/// The stub in the module's work area, and what it is made of: the command and its inputs, the
/// files that compiles have left for the sources of these objects, the settings, and this program,
/// all as they are now. Inputs without coverage count too: runs of a program that another one
/// replaces are told apart by the build id, which the stub holds.
class KeptStub
{
public:
    KeptStub(const LinkCommand& link, const std::vector<ScannedObject>& objects);

    /// True when nothing of that has changed since `keep`, and no file of the work area.
    bool is_valid() const;

    /// From now on it is not valid, whatever becomes of the work area.
    void forget() const;

    /// What the work area holds is made of what this was when it was constructed.
    void keep() const;

private:
    std::string text() const;

    std::string made_of_;
};
