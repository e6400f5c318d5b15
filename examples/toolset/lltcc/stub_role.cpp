// Counters are 8 bytes wide, and compilers rely on the alignment that they gave them, up to that of
// vectors; a stub defines its arrays with elements of 4 bytes or one. A second declaration of each
// array, in front of the stub, aligns it.
#include "stub_role.h"

#include "commonfunc/Caddis_func.h"
#include "examples/toolset/counters/counter_text.h"

#include <fcntl.h>
#include <sstream>

namespace
{

/// Declarations of the arrays that a stub's text defines, one per line: "TYPE NAME[SIZE] = {0};".
std::string aligned_arrays(const std::string& stub)
{
    constexpr std::string_view DEFINITION = " = {0};";
    std::string out = "#ifdef __cplusplus\nextern \"C\" {\n#endif\n";
    std::istringstream lines(stub);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t end = line.find(DEFINITION);
        if (end != line.npos && line.find(" g_QMRCovData_") != line.npos) {
            out += "extern " + line.substr(0, end) + " __attribute__((aligned(" +
                   std::to_string(ARRAY_ALIGNMENT) + ")));\n";
        }
    }
    return out + "#ifdef __cplusplus\n}\n#endif\n";
}

} // namespace

int run_stub_compile(const Words& arguments)
{
    Words words = arguments;
    for (std::size_t i = 1; i < words.size(); ++i) {
        std::string stub;
        if (words[i - 1] == "-c" && read_whole_file(words[i], stub) == Reading::done) {
            const int header = anonymous_file(aligned_arrays(stub));
            ::fcntl(header, F_SETFD, 0); // the compiler reads it
            words.insert(words.begin() + 1,
                         {"-include", "/proc/self/fd/" + std::to_string(header)});
            break;
        }
    }
    return become_program(words);
}
