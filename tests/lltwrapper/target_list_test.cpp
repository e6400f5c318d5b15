// A kernel target list that is longer than any kernel build's.
#include "lltwrapper/classify.h"
#include "tests/fixture.h"

#include <ctime>

using TargetList = TestDir;

TEST_F(TargetList, OfAHundredThousandKeysTheFirstInThePathIsFoundWithinSeconds)
{
    std::string list;
    for (int i = 99999; i >= 0; --i) {
        list += "/n" + std::to_string(i) + ",v" + std::to_string(i) + ":";
    }
    ::setenv("lltwrapper_cfg", "1", 1);
    ::setenv("LLT_TargetName", list.c_str(), 1);
    ::setenv("LLT_TargetName_KO", (list + "/n,last").c_str(), 1);
    const std::clock_t begin = std::clock();
    const Decision decision = decide({"ld", "-o", dir + "/n99999"});
    EXPECT_LT(std::clock() - begin, 5 * CLOCKS_PER_SEC); // in pairs: minutes
    EXPECT_EQ(decision.builtin.name, "v9");              // "/n9" is the first of those in the path
    EXPECT_EQ(decision.module.name, "last");
}
