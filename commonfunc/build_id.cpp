// The build id ties the coverage data of one build together, so it is made once per process and
// kept, whatever the clock and the environment do afterwards.
#include "commonfunc/build_id.h"

#include "commonfunc/env.h"
#include "commonfunc/text.h"

#include <ctime>
#include <string>

char g_szBuildID[260];

namespace
{

/// The time that `QMRTimeFormatStr` took last.
std::time_t current_time;

} // namespace

char* TUSK_Build_GetBUID()
{
    if (g_szBuildID[0] == '\0') {
        char fresh[32];
        TUSK_Build_GenerateBUID(fresh);
        std::string id = fresh;
        if (env_is_filled("PRODUCT_VERSION")) {
            id += "_" + env_text("PRODUCT_VERSION");
        }
        copy_bounded(g_szBuildID, id);
    }
    return g_szBuildID;
}

void TUSK_Build_GenerateBUID(char* out)
{
    if (out == nullptr) {
        return;
    }
    const std::time_t now = std::time(nullptr);
    const std::tm* local = std::localtime(&now);
    std::tm none = {};
    const std::tm& when = local != nullptr ? *local : none;
    out[0] = year_character(when.tm_year - 100);
    out[1 + std::strftime(out + 1, 11, "%m%d%H%M%S", &when)] = '\0';
}

char year_character(int years_since_2000)
{
    static const char alphabet[] = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";
    if (years_since_2000 < 0) {
        return alphabet[0];
    }
    // Kept: each step overwrites the character, so the most significant digit remains.
    char character = '\0';
    for (int years = years_since_2000; years != 0; years /= 36) {
        character = alphabet[years % 36];
    }
    return character;
}

void QMRTimeFormatStr(char* out, unsigned long size, const char* format)
{
    if (size == 0) {
        return;
    }
    current_time = std::time(nullptr);
    const std::tm* local = std::localtime(&current_time);
    const std::size_t length = local != nullptr ? std::strftime(out, size - 1, format, local) : 0;
    out[length] = '\0';
}
