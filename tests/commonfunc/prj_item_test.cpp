#include "commonfunc/Caddis_func.h"
#include "tests/fixture.h"

TEST_F(TestDir, ProjectSwitchesFollowTheirVariables)
{
    using Row = std::tuple<const char*, unsigned, unsigned>;
    for (const auto& row : {Row("", 5, 0), Row("0", 0, 0), Row("no", 0, 0), Row("-2", 1, 1)}) {
        ::setenv("USE_TUSK_VBS", std::get<0>(row), 1);
        ::setenv("LLT_DISABLE_USRCFG", std::get<0>(row), 1);
        g_lxprj->m_uiUseVBS = 5;
        g_lxprj->set_vbsflag();
        EXPECT_EQ(row, Row(std::get<0>(row), g_lxprj->m_uiUseVBS, g_lxprj->isDisableUserConfig()));
    }
}
