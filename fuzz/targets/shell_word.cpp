// Names, each ended by a NUL, through the real shell: they come back as they are.
#include "commonfunc/shell.h"
#include "fuzz/fuzz.h"
#include "fuzz/models.h"

#include <cstdio>

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string names(reinterpret_cast<const char*>(data), size);
    std::string command = "printf '%s\\0'";
    std::string expected;
    for (const std::string& name : fuzz::pieces_of(names.substr(0, 30000), '\0')) {
        command += " " + shell_word(name);
        expected += (name[0] == '-' ? "./" : "") + name + '\0';
    }
    std::FILE* const shell = ::popen(command.c_str(), "r");
    fuzz::holds("the shell starts", shell != nullptr);
    std::string words;
    char part[4096];
    while (std::feof(shell) == 0) {
        words.append(part, std::fread(part, 1, sizeof part, shell));
        std::ferror(shell) != 0 ? std::clearerr(shell)
                                : void(); // the fuzzer's clock interrupted it
    }
    fuzz::same("status of the shell", 0, ::pclose(shell));
    fuzz::same("words of the shell", expected, words);
    return 0;
}
