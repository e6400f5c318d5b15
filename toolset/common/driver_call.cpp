// The options are taken as long as they stand in front: the wrapped command may have equal words.
#include "toolset/common/driver_call.h"

#include "commonfunc/text.h"
#include "contract/names.h"

#include <cctype>
#include <cstdint>
#include <cstdlib>
#include <vector>

namespace
{

bool is_value(const std::string& option, const std::string& word)
{
    if (option != MODE_OPTION) {
        return word != NAME_OPTION && word != MODE_OPTION;
    }
    const std::size_t sign = word[0] == '-' ? 1 : 0;
    return std::isdigit(static_cast<unsigned char>(word[sign])) != 0;
}

} // namespace

DriverCall read_driver_call(const Words& arguments)
{
    DriverCall call;
    auto at = arguments.begin();
    while (at != arguments.end() && is_one_of(*at, {PROJECT_OPTION, NAME_OPTION, MODE_OPTION})) {
        const std::string& option = *at++;
        if (at == arguments.end() || !is_value(option, *at)) {
            continue;
        }
        if (option == MODE_OPTION) {
            call.stub_mode = std::atoi(at->c_str());
        } else {
            (option == PROJECT_OPTION ? call.project : call.name) = *at;
        }
        ++at;
    }
    if (at == arguments.end() || (*at)[0] == '-') {
        notice(
            "usage: %s -qmr_current_prj_path PROJECT -projectname NAME -qmr_coverage_stub_mold MODE COMMAND...; lltwrapper calls it so",
            program_name);
        return call;
    }
    call.command.assign(at, arguments.end());
    return call;
}

std::string hash_name(const Words& texts)
{
    std::uint64_t hash = fnv1a("");
    for (const std::string& text : texts) {
        hash = fnv1a("\xFF", fnv1a(text, hash)); // where one text ends and the next begins
    }
    return hex_digits(hash);
}
