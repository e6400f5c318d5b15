// A compiler's notes are read by the gcov of the same major version: each release may change them.
#include "lltcov/report/gcov_choice.h"

#include "commonfunc/path_name.h"
#include "commonfunc/text.h"
#include "lltcov/report/gcov_files.h"

#include <cstddef>

int gcov_major(const std::string& version_text)
{
    const std::string line = version_text.substr(0, version_text.find('\n'));
    const std::size_t packager = line.find(" (");
    const std::size_t end = line.find(") ", packager == line.npos ? 0 : packager);
    if (packager == line.npos || end == line.npos ||
        base_name(line.substr(0, packager)).find("gcov") == line.npos) {
        return 0;
    }
    return to_int(line.c_str() + end + 2);
}

const std::string& GcovChoice::program_for(const std::string& recorded, std::uint32_t version)
{
    const int major = compiler_major(version);
    const auto [choice, is_new] = choices_.emplace(std::pair(recorded, major), "");
    if (is_new) {
        for (const std::string& program :
             {recorded, "gcov-" + std::to_string(major), std::string("gcov")}) {
            if (!program.empty() && major_of(program) == major) {
                choice->second = program;
                break;
            }
        }
    }
    return choice->second;
}

int GcovChoice::major_of(const std::string& program)
{
    const auto [known, is_new] = majors_.emplace(program, 0);
    if (is_new &&
        wait_for_program(start_program({program, "--version"}, directory_, "version")) == 0) {
        known->second = gcov_major(directory_.read("version.out"));
    }
    return known->second;
}

std::string missing_gcov(const std::string& recorded, std::uint32_t version)
{
    const std::string major = std::to_string(compiler_major(version));
    return "no gcov of version " + major + ", which reads what GCC " + major +
           " counted: neither '" + recorded + "' nor gcov-" + major +
           " or gcov on PATH is one; install the package gcc-" + major + " (apt-get install gcc-" +
           major + ")";
}
