// The commands that are forwarded: to the instrumenting compiler driver, to a link driver, and to
// the archiver with the coverage stub inserted.
#pragma once

#include <cstddef>

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

/// Appends the stub object of the kernel image to `pOriginalCmd`, for its final link; unless the
/// user names the targets ("LLT_TargetName").
void append_image_stub();

/// Sets `strLLTAR`: the command with the module's stub object behind the first occurrence of the
/// archive name. A stub path that does not fit is cut, with a warning: the command must not run
/// then.
void GenerateCMD2AR();
