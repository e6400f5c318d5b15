// One function per reading rule; `getenv` itself is used only where "unset" and "empty" differ.
#include "commonfunc/env.h"

#include "commonfunc/text.h"

#include <cstdlib>

bool env_is_filled(const char* name)
{
    const char* value = std::getenv(name);
    return value != nullptr && *value != '\0';
}

std::string env_text(const char* name)
{
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

int env_int(const char* name)
{
    const char* value = std::getenv(name);
    return value != nullptr ? to_int(value) : 0;
}

bool env_is_nonzero(const char* name)
{
    return env_is_filled(name) && env_int(name) != 0;
}
