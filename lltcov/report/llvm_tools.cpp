// Tools that are newer than the compiler read its counters too, older ones do not.
#include "lltcov/report/llvm_tools.h"

#include "commonfunc/path_search.h"

namespace
{

constexpr int FIRST_VERSION = 14;
constexpr int LAST_VERSION = 40;

/// Both tools by this beginning and end of their names; empty when one is missing.
LlvmTools both(const std::string& before, const std::string& after)
{
    LlvmTools tools = {program_on_path(before + "llvm-profdata" + after),
                       program_on_path(before + "llvm-cov" + after)};
    return tools.profdata.empty() || tools.cov.empty() ? LlvmTools() : tools;
}

} // namespace

LlvmTools find_llvm_tools(const std::string& directory)
{
    LlvmTools tools = directory.empty() ? LlvmTools() : both(directory + "/", "");
    if (tools.cov.empty()) {
        tools = both("", "");
    }
    for (int version = LAST_VERSION; tools.cov.empty() && version >= FIRST_VERSION; --version) {
        tools = both("", "-" + std::to_string(version));
    }
    return tools;
}
