#include "commonfunc/message.h"
#include "tests/fixture.h"

using Message = TestDir;

TEST_F(Message, TuskLogLinesAreTaggedWithMaskedLevelAndCode)
{
    testing::internal::CaptureStdout();
    TUSKLog(11, 7, LOG_WARNING, 10, "%s %d%%\n", "a%s", 5);
    TUSKLog(0xAB, 0, 0x13, 0x1907, "-\n");
    print_info("x %d\n", 5);
    EXPECT_EQ(
        testing::internal::GetCapturedStdout(),
        "[TUSK-0x0B07300A]: a%s 5%\n[TUSK-0xAB003907]: -\n\033[0;32;34mTUSK_INFO:x 5\n\033[m");
}
