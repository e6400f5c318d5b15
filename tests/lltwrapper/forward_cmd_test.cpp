#include "commonfunc/Caddis_func.h"
#include "lltwrapper/forward_cmd.h"
#include "lltwrapper/wrapper_state.h"
#include "tests/fixture.h"

TEST_F(TestDir, TheStubGoesBehindTheArchiveNameAsItStands)
{
    const std::string deep(490, 'd'), tail = "/obj/__code_measure_stub_lib_m.o";
    const std::string rows[][4] = {
        {"d", "m.a", "ar rcs m.a a.o ", "ar rcs m.a d" + tail + " a.o "},
        {"d", "m.a", "/m.a.d/ar r m.a a.o ", "/m.a.d" + tail + " d/ar r m.a a.o "},
        {"d", "my lib.a", "ar rcs my\\ lib.a a.o ", "ar rcs md" + tail + " y\\ lib.a a.o "},
        {"d", "", "ar rcs a.o ", "ad" + tail + " r rcs a.o "},
        {"d", "long/m.a", "ar t ", "ar t d" + tail + " "},
        {deep, "m.a", "ar r m.a a.o ", "ar r m.a " + deep + tail.substr(0, 21) + " a.o "}};
    copy_bounded(g_lxprj->modName, "m");
    for (const auto& [work_area, archive, command, expected] : rows) {
        copy_bounded(g_lxprj->szCovDictPath, work_area);
        arname = archive, pOriginalCmd = command;
        GenerateCMD2AR();
        EXPECT_EQ(strLLTAR, expected);
    }
}
