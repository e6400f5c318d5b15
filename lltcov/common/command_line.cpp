// A small reader instead of getopt: each subcommand has two or three long options, and a wrong call
// is answered with the subcommand's own usage line.
#include "lltcov/common/command_line.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace
{

bool is_in(const std::vector<std::string>& list, const std::string& item)
{
    return std::find(list.begin(), list.end(), item) != list.end();
}

} // namespace

CommandLine::CommandLine(const std::vector<std::string>& arguments,
                         const std::vector<std::string>& flags,
                         const std::vector<std::string>& valued)
{
    bool options_ended = false;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (options_ended || argument.size() < 2 || argument[0] != '-') {
            operands_.push_back(argument);
            continue;
        }
        if (argument == "--") {
            options_ended = true;
            continue;
        }
        const std::size_t equals = argument.find('=');
        const std::string name = argument.substr(0, equals);
        if (is_in(valued, name)) {
            if (equals == argument.npos && i + 1 == arguments.size()) {
                throw UsageError("option '" + name + "' needs a value");
            }
            values_[name].push_back(equals != argument.npos ? argument.substr(equals + 1)
                                                            : arguments[++i]);
        } else if (is_in(flags, argument)) {
            values_[argument] = {""};
        } else {
            throw UsageError("there is no option '" + argument + "'");
        }
    }
}

std::string CommandLine::value(const std::string& option) const
{
    const auto found = values_.find(option);
    return found == values_.end() ? "" : found->second.back();
}

std::vector<std::string> CommandLine::values(const std::string& option) const
{
    const auto found = values_.find(option);
    return found == values_.end() ? std::vector<std::string>() : found->second;
}

void CommandLine::refuse_operands(const std::string& hint) const
{
    if (!operands_.empty()) {
        throw UsageError("what is '" + operands_[0] + "'?" + hint);
    }
}
