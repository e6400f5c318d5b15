// A shim is short in the plain case: the shell reads a script command by command, so a build whose
// wrapping is off pays for the first lines only. With the wrapping on, the rest tells the calls
// that the wrapper must not see, and writes words such that they come through the wrapper and its
// shell as they are. The wrapper's own lines go to a log: makefiles read what their tools print.
#include "lltcov/shims/shim_text.h"

#include "commonfunc/file_io.h"
#include "commonfunc/shell.h"
#include "lltcov/shims/shim_parts.h"

#include <climits>
#include <cstdio>

std::string shim_text(ToolKind kind, const std::string& real, const std::string& wrapper)
{
    const std::string start = SHELL + std::string(MARK) + real + REMARK + "\n" +
                              "real=" + shell_word(real) + " on=${LLT_WRAP:-0}\n";
    const std::string step =
        start + LEAVE_PATH + PLAIN_CASE + "\nwrapper=" + shell_word(wrapper) + "\n" + WRAPPED_CASE;
    switch (kind) {
    case ToolKind::compiler:
        return step + SCAN_COMPILER + RUN_STEP;
    case ToolKind::linker:
        return step + SCAN_LINKER + RUN_STEP;
    case ToolKind::archiver:
        return step + ARCHIVE_STEP;
    case ToolKind::launcher:
        return start + SKIP_LAUNCHER + LEAVE_PATH + "exec \"$real\" \"$@\"\n";
    case ToolKind::none:
        break;
    }
    return "";
}

std::string tool_of_shim(const std::string& path)
{
    const File file = open_file(path, "rbe");
    char start[PATH_MAX + 128] = {};
    if (!file || std::fread(start, 1, sizeof start - 1, file.get()) == 0) {
        return "";
    }
    const std::string text = start;
    const std::string before = std::string(SHELL) + MARK;
    const std::size_t end = text.find(REMARK);
    return text.compare(0, before.size(), before) == 0 && end != text.npos
               ? text.substr(before.size(), end - before.size())
               : "";
}

bool is_shim(const std::string& path)
{
    return !tool_of_shim(path).empty();
}
