// Word-size suffixes of link names, and the variable that tells the link driver about them.
#include "lltwrapper/word_size.h"

#include "commonfunc/env.h"
#include "lltwrapper/wrapper_state.h"

#include <cstdlib>
#include <cstring>

void TUSK_SetType_m32m64(const char* option)
{
    g_str_m32m64 = std::strcmp(option, "-m32") == 0 ? "_m32" : "_m64";
}

std::string& TUSK_GetType_m32m64()
{
    return g_str_m32m64;
}

unsigned int TUSK_LINUXCADDIS_IsEnable3264()
{
    static const bool enabled = env_is_nonzero("TUSK_ENABLE_m32m64");
    return enabled ? 1 : 0;
}

std::string& TUSK_LINUXCADDIS_GET3264STR()
{
    if (TUSK_LINUXCADDIS_IsEnable3264() != 0) {
        // Kept: "2" also when the command named no word size.
        ::setenv("TUSK_innerenv_m32m64", g_str_m32m64 == "_m32" ? "1" : "2", 1);
        strLinkName += g_str_m32m64;
    }
    return strLinkName;
}
