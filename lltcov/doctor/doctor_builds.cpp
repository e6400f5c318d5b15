// Build directories of CMake, which keep the compilers that they were configured with: the shims
// of PATH are not looked for again. What is read is the cache file of each, with rows
// NAME:TYPE=VALUE.
#include "commonfunc/file_io.h"
#include "commonfunc/shell.h"
#include "commonfunc/text.h"
#include "lltcov/common/console.h"
#include "lltcov/doctor/doctor.h"
#include "lltcov/report/project_data.h"
#include "lltcov/shims/shim_text.h"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace
{

/// The value of a row of a cache; empty where there is none.
std::string cached(const std::string& cache, const std::string& name)
{
    const std::size_t row = ("\n" + cache).find("\n" + name + ":");
    if (row == std::string::npos) {
        return "";
    }
    const std::size_t end = std::min(cache.find('\n', row), cache.size());
    const std::size_t value = cache.find('=', row);
    return value < end ? cache.substr(value + 1, end - value - 1) : "";
}

/// The compiler of a cache that goes through the wrapper in no way; empty when there is none.
std::string unwrapped_compiler(const std::string& cache)
{
    if (!cached(cache, "lltwrapper_DIR").empty() ||
        contains(cached(cache, "CMAKE_PROJECT_INCLUDE"), "lltwrapper")) {
        return "";
    }
    std::string found;
    for (const std::string language : {"CMAKE_CXX_COMPILER", "CMAKE_C_COMPILER"}) {
        const std::string compiler = cached(cache, language);
        if (contains(compiler + cached(cache, language + "_LAUNCHER"), "lltwrapper") ||
            is_shim(compiler)) {
            return "";
        }
        found = compiler.empty() ? found : compiler;
    }
    return found;
}

} // namespace

void check_builds(Examined& examined, Findings& findings)
{
    if (!examined.data.modules.empty()) {
        return; // a directory for something else may stand beside the one that counts
    }
    for (const std::string& path : examined.files) {
        const std::filesystem::path file = path;
        std::string cache;
        if (file.filename() != "CMakeCache.txt" || read_whole_file(path, cache) != Reading::done) {
            continue;
        }
        const std::string compiler = unwrapped_compiler(cache);
        if (!compiler.empty()) {
            const std::string directory = file.parent_path();
            findings.add("configured builds",
                         "'" + directory + "' is configured for '" + compiler +
                             "' and keeps it: nothing built there is counted" +
                             cured_by("rm " + shell_word(path) + " && lltcov run -- cmake -S " +
                                          shell_word(cached(cache, "CMAKE_HOME_DIRECTORY")) +
                                          " -B " + shell_word(directory),
                                      "then build it by lltcov run; with its options"));
        }
    }
}
