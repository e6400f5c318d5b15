#include "commonfunc/Caddis_func.h"
#include "lltwrapper/forward_cmd.h"
#include "lltwrapper/wrapper_state.h"
#include "tests/fixture.h"

using ForwardedCommand = TestDir;

TEST_F(ForwardedCommand, OfTheArchiverTakesTheStubAfterTheArchiveName)
{
    const std::string deep(490, 'd'), tail = "/obj/__code_measure_stub_lib_m.o";
    const struct {
        const char* what;
        std::string area, archive, command;
        std::string expected;
    } rows[] = {
        {"after the archive", "d", "m.a", "ar rcs m.a a.o ", "ar rcs m.a d" + tail + " a.o "},
        {"where its name comes first", "d", "m.a", "/m.a.d/ar r m.a a.o ",
         "/m.a.d" + tail + " d/ar r m.a a.o "},
        {"into an escaped name", "d", "my lib.a", "ar rcs my\\ lib.a a.o ",
         "ar rcs md" + tail + " y\\ lib.a a.o "},
        {"without an archive", "d", "", "ar rcs a.o ", "ad" + tail + " r rcs a.o "},
        {"an archive of another directory", "d", "long/m.a", "ar t ", "ar t d" + tail + " "},
        {"a stub path that is cut", deep, "m.a", "ar r m.a a.o ",
         "ar r m.a " + deep + tail.substr(0, 21) + " a.o "},
    };
    copy_bounded(g_lxprj->modName, "m");
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        copy_bounded(g_lxprj->szCovDictPath, row.area);
        arname = row.archive, pOriginalCmd = row.command;
        GenerateCMD2AR();
        EXPECT_EQ(strLLTAR, row.expected);
    }
}
