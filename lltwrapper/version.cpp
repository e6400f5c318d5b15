// The only file with build-time macros, so that nothing else changes from build to build. With
// SOURCE_DATE_EPOCH the build defines the time, so that it can be repeated byte for byte: not every
// compiler heeds that variable.
#include "lltwrapper/version.h"

#include "commonfunc/message.h"
#include "commonfunc/text.h"

namespace
{

constexpr char VERSION[] = LLTWRAPPER_VERSION;
#ifndef LLTWRAPPER_BUILT
#define LLTWRAPPER_BUILT __TIME__ " " __DATE__
#endif

static_assert(sizeof VERSION <= 61, "the banner has room for a version of 60 bytes");

} // namespace

void ShowVersion()
{
    char banner[320];
    format_bounded(banner, "[TUSK LINUX CADDIS]\nVersion: %s\nBuild at: %s", VERSION,
                   LLTWRAPPER_BUILT);
    say("%s\n", banner);
}
