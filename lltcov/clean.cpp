#include "lltcov/commands.h"

#include "lltcov/command_line.h"

int run_clean(const Arguments& arguments)
{
    (void)arguments;
    throw UsageError("not there yet");
}
