// It is made where the coverage work has failed, so it relies on as little as may be: on the tables
// that the compiles have left, and a disk with room.
#include "toolset/linkdriver/plain_object.h"

#include "commonfunc/Caddis_func.h"
#include "commonfunc/env.h"
#include "commonfunc/file_io.h"
#include "commonfunc/file_ops.h"
#include "commonfunc/file_tree.h"
#include "commonfunc/path_name.h"
#include "commonfunc/shell.h"
#include "contract/names.h"
#include "lltld/cov_paths.h"
#include "lltld/source_tab.h"
#include "toolset/common/process.h"
#include "toolset/counters/counter_text.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

namespace
{

/// Position-independent, for it may go into a shared library; kernel code cannot be. It runs once.
std::string stub_options(const std::string& command)
{
    const bool is_kernel = command.find("-mcmodel=kernel") != command.npos;
    return std::string(is_kernel ? "" : " -fPIC") + " -O0 -g0 -fno-lto -w";
}

/// The definition of a symbol's counter array, as bytes; empty when its size is not known. 8 bytes
/// per point are enough in every stub mode.
std::string plain_array(const std::string& symbol)
{
    _SOURCEFILE_TAB table;
    std::string line;
    if (QMRFileExists(temp_tab_path(symbol.c_str()).c_str()) != 0 &&
        GetOneSourceFileTabInfo2(temp_tab_path(symbol.c_str()).c_str(), &table) != 0 &&
        table.elementcount > 0) {
        const std::int64_t bytes = std::max(table.objlist->instnum, 1) * std::int64_t{8};
        line = "__attribute__((weak, aligned(" + std::to_string(ARRAY_ALIGNMENT) +
               "))) char " ARRAY_PREFIX + symbol + "[" + std::to_string(bytes) + "];\n";
    }
    release_table(table);
    return line;
}

/// A directory of this process below "TMPDIR", else /tmp, for when the disk of the work area is
/// full.
struct ScratchDirectory {
    /// Empty when it cannot be made.
    std::string path =
        (env_is_filled("TMPDIR") ? absolute_path(env_text("TMPDIR")) : "/tmp") + "/lltld-XXXXXX";

    ScratchDirectory()
    {
        if (::mkdtemp(&path[0]) == nullptr) {
            path.clear();
        }
    }
    ~ScratchDirectory() { remove_tree(path); }
    ScratchDirectory(const ScratchDirectory&) = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;
};

/// The object of a C source, made in the directory; an empty path after a message.
std::string compiled_plainly(const std::string& source, const std::string& directory)
{
    const std::string path = directory + "/" + PLAIN_OBJECT;
    if (QMRPathIsDirectory(directory.c_str()) == 0 ||
        replace_file(path + ".c", source) != Writing::done) {
        return "";
    }
    // The recorded command may be what is wrong.
    for (const std::string& command : {g_lxprj->strCompileCmd, std::string("cc")}) {
        if (!command.empty() &&
            run_helper(command + stub_options(command) + " -c " + shell_word(path + ".c") + " -o " +
                       shell_word(path + ".o")) == 0) {
            return path + ".o";
        }
    }
    return "";
}

} // namespace

std::string make_plain_object(const std::vector<ScannedObject>& objects,
                              const std::string& functions)
{
    std::string source = functions;
    for (const ScannedObject& object : objects) {
        for (const CoverageSymbol& symbol : object.symbols) {
            const std::string line = plain_array(symbol.name);
            if (line.empty()) {
                notice(
                    "'%s' needs a counter array of unknown size: its record '%s' is gone; compile it again",
                    object.path.c_str(), temp_tab_path(symbol.name.c_str()).c_str());
                return "";
            }
            if (source.find(line) == source.npos) {
                source += line;
            }
        }
    }
    const std::string directory = std::string(g_lxprj->szCovDictPath) + "/obj";
    std::string path = compiled_plainly(source, directory);
    if (path.empty()) {
        static const ScratchDirectory scratch; // until the link is done
        path = scratch.path.empty() ? "" : compiled_plainly(source, scratch.path);
    }
    return path;
}
