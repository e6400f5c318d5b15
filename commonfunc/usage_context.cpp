// Usage context: option filters and feature bits from the environment, and the two functions that
// split texts into lists and key/value maps.
#include "commonfunc/Caddis_func.h"
#include "commonfunc/env.h"
#include "commonfunc/text.h"

#include <cstdlib>
#include <string>

CUsageContext* CUsageContext::m_pInstance = nullptr;

CUsageContext* CUsageContext::GetInstance()
{
    static CUsageContext instance;
    m_pInstance = &instance;
    return m_pInstance;
}

void CUsageContext::GetContext()
{
    static int calls = 0;
    if (calls != 0) {
        return;
    }
    Check_LLT_STATUS();
    str_LLT_EXCLUDE_CC = env_text("LLT_EXCLUDE_CC");
    Set_LLT_EXCLUDE_CC();
    str_LLT_EXCLUDE_CCOPTION = env_text("LLT_EXCLUDE_CCOPTION");
    Set_LLT_EXCLUDE_CCOPTION();
    str_LLT_REPLACE_CCOPTION = env_text("LLT_REPLACE_CCOPTION");
    str_LLT_PLATFORM_CCOPTION = env_text("LLT_PLATFORM_CCOPTION");
    i_LLTLD_AVOID_SAME_NAME = env_is_nonzero("LLTLD_AVOID_SAME_NAME") ? 1 : 0;
    ++calls;
}

void CUsageContext::Check_LLT_STATUS()
{
    // Kept: switching coverage off clears every bit, and any text that is no number switches off.
    if (std::getenv("USE_TUSK_COVERAGE") != nullptr && env_int("USE_TUSK_COVERAGE") == 0) {
        m_iLLTStatus = 0;
    }
    if (env_int("USE_TUSK_TESTCASE") == 1) {
        Add_LLT_STATUS(USAGE_TEST_CASES);
    }
    if (env_int("ATG_ENABLE") == 1) {
        Add_LLT_STATUS(USAGE_ATG);
    }
}

void CUsageContext::Set_LLT_EXCLUDE_CC()
{
    strsplit_v(str_LLT_EXCLUDE_CC.c_str(), ':', m_vtor_LLT_EXCLUDE_CC);
}

void CUsageContext::Set_LLT_EXCLUDE_CCOPTION()
{
    strsplit_v(str_LLT_EXCLUDE_CCOPTION.c_str(), ':', m_vtor_LLT_EXCLUDE_CCOPTION);
}
