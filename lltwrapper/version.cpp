// The only file with build-time macros, so that nothing else changes from build to build.
#include "lltwrapper/version.h"

#include "commonfunc/message.h"
#include "commonfunc/text.h"

namespace
{

constexpr char VERSION[] = LLTWRAPPER_VERSION;
static_assert(sizeof VERSION <= 61, "the banner has room for a version of 60 bytes");

} // namespace

void ShowVersion()
{
    char banner[320];
    format_bounded(banner, "[TUSK LINUX CADDIS]\nVersion: %s\nBuild at: %s %s", VERSION, __TIME__,
                   __DATE__);
    say("%s\n", banner);
}
