// One wrapped link, from the driver's call to the tool's exit status.
#pragma once

/// Takes the driver's options off, does the coverage work that the link needs, and runs the link.
/// Returns the tool's exit status; 2 when there is no command.
int drive_link(int argc, char** argv);
