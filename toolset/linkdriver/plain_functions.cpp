// Everything is weak and hidden: a program or library that has a definition of its own keeps it.
// No header is included, for the text is compiled with the options of a project's own sources.
#include "toolset/linkdriver/plain_functions.h"

#include "commonfunc/text.h"
#include "lltld/archive_file.h"
#include "toolset/linkdriver/link_file.h"

#include <set>
#include <vector>

namespace
{

constexpr char HEAD[] =
    "#ifdef __cplusplus\nextern \"C\" {\n#endif\n"
    "#define HIDDEN __attribute__((weak, visibility(\"hidden\")))\n"
    "#define PLAIN(name) HIDDEN void *name(void) { return 0; }\n"
    "PLAIN(QMR_CreateCoverageListExt)\nPLAIN(QMR_AddCoverageBuf)\nPLAIN(QMR_DumpModuleCovdata)\n"
    "PLAIN(TUSK_CovSetTimerPolicy)\nPLAIN(TUSK_CovSetSignalPolicy)\n"
    "PLAIN(TUSK_CovSetlltcovRootpath)\nPLAIN(TUSK_CovSetSupportVbsFlag)\n"
    "PLAIN(TUSK_CovSetCompilePolicy)\nPLAIN(QMRGetTargetState)\nPLAIN(QMRSetTargetState)\n"
    "PLAIN(QMRInit)\nPLAIN(ZKT_ServerInit)\nPLAIN(TUSK_UserAgentConfig)\nPLAIN(lltcov_dump)\n"
    "PLAIN(lltcov_reset)\nPLAIN(__gcov_dump)\nPLAIN(__gcov_reset)\n"
    "PLAIN(__gcov_init)\nPLAIN(__gcov_exit)\n"
    "HIDDEN unsigned short g_TUSKSockBindPort;\n"
    // The arguments of a list, on the stack as the runtime has them; `rest` is then after them.
    "#define COLLECT(last)"
    " __builtin_va_list rest; char **list; unsigned long n = 1, i; char *at = last;"
    " __builtin_va_start(rest, last); for (; at; ++n) at = __builtin_va_arg(rest, char *);"
    " __builtin_va_end(rest); list = (char **)__builtin_alloca(n * sizeof *list);"
    " __builtin_va_start(rest, last); list[0] = last;"
    " for (i = 1; i < n; ++i) list[i] = __builtin_va_arg(rest, char *);\n";
constexpr char TAIL[] = "#ifdef __cplusplus\n}\n#endif\n";

/// A function that the compiler replaces by "__gcov_" and its name.
struct Replaced {
    const char* name;
    const char* real; ///< declaration of the function that is called in the end
    const char* text; ///< what follows the name "__gcov_..."
};

constexpr char EXECV[] = "int execv(const char *, char *const *);";
constexpr char EXECVP[] = "int execvp(const char *, char *const *);";
constexpr char EXECVE[] = "int execve(const char *, char *const *, char *const *);";

constexpr Replaced REPLACED[] = {
    {"fork", "int fork(void);", "(void) { return fork(); }"},
    {"execv", EXECV, "(const char *f, char *const *a) { return execv(f, a); }"},
    {"execvp", EXECVP, "(const char *f, char *const *a) { return execvp(f, a); }"},
    {"execve", EXECVE,
     "(const char *f, char *const *a, char *const *e) { return execve(f, a, e); }"},
    {"execl", EXECV, "(const char *f, char *a, ...) { COLLECT(a) return execv(f, list); }"},
    {"execlp", EXECVP, "(const char *f, char *a, ...) { COLLECT(a) return execvp(f, list); }"},
    {"execle", EXECVE,
     "(const char *f, char *a, ...)"
     " { COLLECT(a) return execve(f, list, __builtin_va_arg(rest, char **)); }"},
};

/// Notes which of the functions the file refers to: their names end with a NUL in its table of
/// names. The members of a thin archive are elsewhere, so that it may refer to all.
void find_replaced(const std::string& path, std::set<const Replaced*>& found)
{
    std::string content;
    if (!read_input(path, content)) {
        return;
    }
    const bool is_thin = begins_with(content, THIN_ARCHIVE_MAGIC);
    for (const Replaced& replaced : REPLACED) {
        const std::string name = std::string("__gcov_") + replaced.name;
        if (is_thin || content.find(name.c_str(), 0, name.size() + 1) != content.npos) {
            found.insert(&replaced);
        }
    }
}

} // namespace

std::string plain_functions(const LinkCommand& link)
{
    std::set<const Replaced*> found;
    for (const auto* inputs : {&link.objects, &link.archives}) {
        for (const LinkInput& input : *inputs) {
            find_replaced(input.path, found);
        }
    }
    std::string text = HEAD;
    for (const Replaced* replaced : found) {
        text += std::string(replaced->real) + "\nHIDDEN int __gcov_" + replaced->name +
                replaced->text + "\n";
    }
    return text + TAIL;
}
