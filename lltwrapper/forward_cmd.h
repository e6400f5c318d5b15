// The commands that are forwarded: to the instrumenting compiler driver, to a link driver, and to
// the archiver with the stub inserted.
#pragma once

#include "lltwrapper/classify.h"

#include <cstddef>
#include <string>

/// Bytes of the stub object's path that `GenerateCMD2AR` puts into the command.
constexpr std::size_t STUB_PATH_LENGTH = 511;

/// The link driver of a value of "lltwrapper_cfg"; null for one that has none.
const char* link_driver(int token);

/// Sets `strLLTCC`: `lltcc` with project root, project name and stub mode before the command.
void GenerateCMD2LLTCC();

/// Sets `strLLTLD`: the link driver of `iToken_wrapper` with project root, target name and stub
/// mode before the command. Sets `strLinkName` to the target name's identifier form. Without any
/// target name it prints a message, and then, as for a token without a driver, `strLLTLD` stays
/// as it was.
void GenerateCMD2LLTLD();

/// Sets `strLLTAR`: the command with the module's stub object after the first occurrence of the
/// archive name. A stub path that does not fit is cut, with a warning: the command must not run
/// then.
void GenerateCMD2AR();

/// Builds the command that runs in this mode. The final link of a kernel image gets the image's
/// stub object appended to `pOriginalCmd`, unless the user names the targets ("LLT_TargetName").
const std::string& build_command(Mode mode);
