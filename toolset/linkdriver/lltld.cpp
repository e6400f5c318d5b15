// lltld stands in front of a link command, as lltwrapper forwards it: it registers the instrumented
// objects among the inputs, and links the coverage runtime. It answers to six names, one per kind
// of target; what it does depends on the command alone, so all of them do the same.
#include "commonfunc/message.h"
#include "toolset/common/process.h"
#include "toolset/linkdriver/link_driver.h"

#include <exception>

int main(int argc, char** argv)
{
    std::set_terminate(stop_without_memory);
    try {
        return drive_link(argc, argv);
    } catch (const std::exception& error) {
        notice("stopped, the command was not run: %s", error.what());
        return 1;
    }
}
