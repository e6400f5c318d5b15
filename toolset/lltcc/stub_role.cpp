// Counters are 8 bytes wide, and compilers rely on the alignment that they gave them, up to that of
// vectors; a stub defines its arrays with elements of 4 bytes or one. A second declaration of each
// array, in front of the stub, aligns it. The stub includes C headers of which it uses three names;
// short ones of lltcc's own stand in for the long ones: a third of a stub's compile.
#include "toolset/lltcc/stub_role.h"

#include "commonfunc/file_io.h"
#include "commonfunc/own_files.h"
#include "contract/names.h"
#include "toolset/counters/counter_text.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sstream>
#include <string>
#include <string_view>
#include <unistd.h>
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
    std::string on_disk; // where no file without a name can be opened by another program
    for (std::size_t i = 1; i < words.size(); ++i) {
        std::string stub;
        if (words[i - 1] == "-c" && read_whole_file(words[i], stub) == Reading::done) {
            const std::string text = front_of(stub);
            const int file = anonymous_file(text);
            ::fcntl(file, F_SETFD, 0); // the compiler reads it
            std::string front = "/proc/self/fd/" + std::to_string(file);
            if (::access(front.c_str(), R_OK) != 0) {
                front = on_disk = words[i] + ".front";
                if (replace_file(front, text) != Writing::done) {
                    notice("cannot write '%s', which the stub needs: %s; make room there",
                           front.c_str(), std::strerror(errno));
                    return 1;
                }
            }
            // After all other headers: those see the C library's own.
            words.insert(words.begin() + static_cast<std::ptrdiff_t>(i) - 1,
                         {"-pipe", "-I" + own_file("lltcc.d") + "/stub", "-include", front});
            break;
        }
    }
    if (on_disk.empty()) {
        return become_program(words);
    }
    const int status = run_program(words);
    ::unlink(on_disk.c_str());
    return status;
}
