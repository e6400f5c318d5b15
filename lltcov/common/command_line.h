// Options and operands of a subcommand.
#pragma once

#include <map>
#include <stdexcept>
#include <string>
#include <vector>

/// A call that the subcommand does not understand; its text says what is wrong.
class UsageError : public std::runtime_error
{
    using std::runtime_error::runtime_error;
};

/// The options and operands of a call. A long option's value is its next argument or follows
/// "="; the last one of a name counts.
class CommandLine
{
public:
    /// Reads the arguments. `flags` and `valued` are the known options, dashes included; "--" ends
    /// the options. Throws `UsageError` for an unknown option or one without its value.
    CommandLine(const std::vector<std::string>& arguments, const std::vector<std::string>& flags,
                const std::vector<std::string>& valued);

    /// True when the option was given.
    bool has(const std::string& option) const { return values_.count(option) != 0; }

    /// The option's value; empty when it was not given.
    std::string value(const std::string& option) const;

    /// All values that the option was given, in their order.
    std::vector<std::string> values(const std::string& option) const;

    /// What stands in the call beside options and their values.
    const std::vector<std::string>& operands() const { return operands_; }

    /// Throws `UsageError` when there are operands; `hint` is added to its text.
    void refuse_operands(const std::string& hint = "") const;

private:
    std::map<std::string, std::vector<std::string>> values_;
    std::vector<std::string> operands_;
};
