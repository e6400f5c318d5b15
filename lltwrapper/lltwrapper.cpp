// lltwrapper stands in front of every compiler, linker and archiver command of a build: it
// rebuilds the command, decides what kind of step it is, and runs it, mostly by an instrumenting
// driver. This is the whole road.
#include "commonfunc/message.h"
#include "lltwrapper/cmd_parser.h"
#include "lltwrapper/mode_dispatch.h"
#include "lltwrapper/process_setup.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <string>

int main(int argc, char** argv)
{
    std::set_terminate(stop_without_memory);
    try {
        prepare_process();
        if (answer_without_command({argv + std::min(argc, 1), argv + argc})) {
            return 0;
        }
        log_output();
        parser(argc, argv);
        read_project();
        return dispatch_mode();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "lltwrapper: stopped: %s\n", error.what());
        return 1;
    }
}
