#include "commonfunc/Caddis_func.h"
#include "tests/fixture.h"

using ProjectItem = TestDir;

TEST_F(ProjectItem, SwitchesFollowTheirVariables)
{
    const struct {
        const char *what, *value;
        unsigned use_vbs, no_user_config; ///< `m_uiUseVBS` is 5 before
    } rows[] = {
        {"an empty value leaves what was there", "", 5, 0},
        {"zero", "0", 0, 0},
        {"a word counts as zero", "no", 0, 0},
        {"any other number", "-2", 1, 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        ::setenv("USE_TUSK_VBS", row.value, 1);
        ::setenv("LLT_DISABLE_USRCFG", row.value, 1);
        g_lxprj->m_uiUseVBS = 5;
        g_lxprj->set_vbsflag();
        EXPECT_EQ(g_lxprj->m_uiUseVBS, row.use_vbs);
        EXPECT_EQ(g_lxprj->isDisableUserConfig(), row.no_user_config);
    }
}
