// Counters are 8 bytes wide, and compilers rely on the alignment that they gave them, up to that of
// vectors; a stub defines its arrays with elements of 4 bytes or one. A second declaration of each
// array, in front of the stub, aligns it. The stub includes C headers of which it uses three names;
// short ones of lltcc's own stand in for the long ones: a third of a stub's compile.
#include "toolset/lltcc/stub_role.h"

#include "commonfunc/file_io.h"
#include "contract/names.h"
#include "toolset/common/own_files.h"
#include "toolset/counters/counter_text.h"

#include <cstddef>
#include <fcntl.h>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace
{

/// What stands in front of a stub: declarations of the arrays that its text defines, one per line:
/// "TYPE NAME[SIZE] = {0};", and the word that the short headers wait for.
std::string front_of(const std::string& stub)
{
    constexpr std::string_view DEFINITION = " = {0};";
    std::string out = "#define LLTCC_STUB\n#ifdef __cplusplus\nextern \"C\" {\n#endif\n";
    std::istringstream lines(stub);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t end = line.find(DEFINITION);
        if (end != line.npos && line.find(" " ARRAY_PREFIX) != line.npos) {
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
            const int front = anonymous_file(front_of(stub));
            ::fcntl(front, F_SETFD, 0); // the compiler reads it
            // After all other headers: those see the C library's own.
            words.insert(words.begin() + static_cast<std::ptrdiff_t>(i) - 1,
                         {"-pipe", "-I" + own_file("lltcc.d") + "/stub", "-include",
                          "/proc/self/fd/" + std::to_string(front)});
            break;
        }
    }
    return become_program(words);
}
