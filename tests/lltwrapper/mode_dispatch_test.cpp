#include "lltwrapper/mode_dispatch.h"
#include "lltwrapper/wrapper_state.h"
#include "tests/fixture.h"

TEST_F(TestDir, AnEmptyVectorIsAUsageError)
{
    testing::internal::CaptureStdout();
    EXPECT_TRUE(answer_without_command({}));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "error usage\n");
}

TEST_F(TestDir, TheFirstFlagThatIsOneDecides)
{
    ::setenv("LLT_TargetName", "k,u", 1); // a special run then needs no stub
    read_project();
    const std::string rows[][3] = {
        {"111", "9", "special_cmd:: kill -9 $$ \n"}, // special, unchanged, compile; link always
        {"211", "9", "kill -9 $$ "},
        {"001", "1",
         "lltcc cmd:\n lltcc -qmr_current_prj_path  -projectname LLTTEMP  -qmr_coverage_stub_mold  "
         "kill -9 $$  \n"},
        {"002", "0", "lltwrapper error, NULL projectname\nlltld cmd:\n  \n"}};
    for (const auto& [flags, status, prints] : rows) {
        special_flag = flags[0] - '0', ori_flag = flags[1] - '0', lltcc_flag = flags[2] - '0';
        lltld_flag = 1, pOriginalCmd = "kill -9 $$ ";
        testing::internal::CaptureStdout();
        EXPECT_EQ(std::to_string(dispatch_mode() & 0xFF), status) << flags;
        EXPECT_EQ(testing::internal::GetCapturedStdout(), prints) << flags;
    }
}
