// One function per reading rule; `getenv` itself is used only where "unset" and "empty" differ.
#include "commonfunc/env.h"

#include "commonfunc/text.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>
#include <unistd.h>

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

ChangedEnvironment::ChangedEnvironment(const std::vector<std::string>& changes) : changes_(changes)
{
    const auto name_of = [](std::string_view variable) {
        return variable.substr(0, variable.find('='));
    };
    for (char** variable = environ; *variable != nullptr; ++variable) {
        if (std::none_of(changes_.begin(), changes_.end(), [&](const std::string& change) {
                return name_of(change) == name_of(*variable);
            })) {
            variables_.push_back(*variable);
        }
    }
    for (std::string& change : changes_) {
        if (change.find('=') != change.npos) {
            variables_.push_back(&change[0]);
        }
    }
    variables_.push_back(nullptr);
}
