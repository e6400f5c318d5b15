#include "lltwrapper/mode_dispatch.h"
#include "lltwrapper/wrapper_state.h"
#include "tests/fixture.h"

using ModeDispatch = TestDir;

TEST_F(ModeDispatch, AnEmptyVectorIsAUsageError)
{
    testing::internal::CaptureStdout();
    EXPECT_TRUE(answer_without_command({}));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "error usage\n");
}

TEST_F(ModeDispatch, TheFirstFlagThatIsOneDecides)
{
    ::setenv("LLT_TargetName", "k,u", 1); // a special run then needs no stub
    read_project();
    const struct {
        const char* what;
        int special, unchanged, compile; ///< the flags; that of a link is always set
        int status;
        const char* out;
    } rows[] = {
        {"special first", 1, 1, 1, 9, "special_cmd:: kill -9 $$ \n"},
        {"unchanged, as 2 is not 1", 2, 1, 1, 9, "kill -9 $$ "},
        {"compile before link", 0, 0, 1, 1,
         "lltcc cmd:\n lltcc -qmr_current_prj_path  -projectname LLTTEMP  -qmr_coverage_stub_mold  "
         "kill -9 $$  \n"},
        {"link", 0, 0, 2, 0, "lltwrapper error, NULL projectname\nlltld cmd:\n  \n"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        special_flag = row.special, ori_flag = row.unchanged, lltcc_flag = row.compile;
        lltld_flag = 1, pOriginalCmd = "kill -9 $$ ";
        testing::internal::CaptureStdout();
        EXPECT_EQ(dispatch_mode() & 0xFF, row.status);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), row.out);
    }
}
