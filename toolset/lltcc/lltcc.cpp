// lltcc: the compiler driver. One program in three roles: `lltcc` stands in front of the
// compiler, under the name `as` it is what that compiler takes for its assembler, and `lltcc -stub`
// compiles stubs.
#include "commonfunc/message.h"
#include "commonfunc/path_name.h"
#include "toolset/common/process.h"
#include "toolset/lltcc/assembler.h"
#include "toolset/lltcc/driver.h"
#include "toolset/lltcc/handover.h"
#include "toolset/lltcc/stub_role.h"

#include <exception>
#include <string>
#include <vector>

const char* const program_name = "lltcc";

int main(int argc, char** argv)
{
    std::set_terminate(stop_without_memory);
    try {
        const Words arguments(argv + 1, argv + argc);
        if (base_name(argv[0]) == "as") {
            if (!is_within_compile()) {
                run_next_assembler(argv);
            }
            return run_assembler(arguments);
        }
        if (argc > 2 && arguments[0] == STUB_ROLE) {
            return run_stub_compile(Words(arguments.begin() + 1, arguments.end()));
        }
        return run_driver(arguments);
    } catch (const std::exception& error) {
        notice("%s", error.what());
        return 1;
    }
}
