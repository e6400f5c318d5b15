// lltcc: instrumenting compiler driver. One program in two roles: `lltcc` stands in front of the
// compiler, and under the name `as` it is what that compiler takes for its assembler.
#include "assembler.h"
#include "commonfunc/path_name.h"
#include "driver.h"

#include <exception>

const char* const program_name = "lltcc";

int main(int argc, char** argv)
{
    try {
        const Words arguments(argv + 1, argv + argc);
        return base_name(argv[0]) == "as" ? run_assembler(arguments) : run_driver(arguments);
    } catch (const std::exception& error) {
        notice("%s", error.what());
        return 1;
    }
}
