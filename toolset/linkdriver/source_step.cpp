// The objects have fixed places, one directory per output: an object's place is part of a source's
// identity, and data of a changed source are found to be superseded only at the same place.
#include "toolset/linkdriver/source_step.h"

#include "commonfunc/Caddis_func.h"
#include "commonfunc/file_ops.h"
#include "commonfunc/path_name.h"
#include "contract/names.h"
#include "contract/places.h"
#include "toolset/common/process.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <string>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <vector>

namespace
{

std::string compiler_driver()
{
    const std::string beside = program_directory() + "/lltcc";
    return ::access(beside.c_str(), X_OK) == 0 ? beside : "lltcc";
}

/// The driver's call without input and output: the command less what only a link needs.
std::vector<std::string> compilation_of(const DriverCall& call, const LinkCommand& link)
{
    std::vector<std::string> words = {compiler_driver(),
                                      PROJECT_OPTION,
                                      call.project,
                                      NAME_OPTION,
                                      TEMPORARY_NAME,
                                      MODE_OPTION,
                                      std::to_string(call.stub_mode)};
    std::vector<bool> left_out(link.words.size() + 1);
    for (const std::size_t position : link.link_only) {
        left_out[std::min(position, link.words.size())] = true;
    }
    for (const LinkInput& source : link.sources) {
        left_out[source.position] = true;
    }
    for (std::size_t i = 0; i < link.words.size(); ++i) {
        if (!left_out[i]) {
            words.push_back(link.words[i]);
        }
    }
    // As the compilers do for "-MD -o DIR/NAME.SUFFIX" without these.
    if (link.writes_dependencies && !link.names_dependency_file) {
        const std::string name = base_name(link.output);
        const std::string stem = name.substr(0, name.rfind('.'));
        const std::string directory = link.output.substr(0, link.output.size() - name.size());
        words.insert(words.end(), {"-MF", directory + stem + ".d"});
    }
    if (link.writes_dependencies && !link.names_dependent) {
        words.insert(words.end(), {"-MQ", link.output});
    }
    words.emplace_back("-c");
    return words;
}

} // namespace

LinkCommand compile_sources(const DriverCall& call, const LinkCommand& link)
{
    const bool are_words = std::all_of(link.sources.begin(), link.sources.end(),
                                       [](const LinkInput& source) { return source.is_word; });
    if (link.sources.empty()) {
        return link;
    }
    if (!are_words || link.leaves_side_files) {
        notice(
            "sources in the link of '%s' are compiled without coverage; compile them by commands of their own (-c)",
            link.output.c_str());
        return link;
    }
    const std::string directory = places::temporary_directory(g_lxprj->szCovDictPath) +
                                  "/linkobj/" + hash_name({absolute_path(link.output)});
    std::error_code unused; // what fails here fails with a message there
    std::filesystem::create_directories(directory, unused);
    if (QMRCreateDirectory(directory.c_str()) == 0) {
        return link;
    }
    std::vector<std::string> words = link.words;
    for (std::size_t i = 0; i < link.sources.size(); ++i) {
        const LinkInput& source = link.sources[i];
        const std::string object =
            directory + "/" + std::to_string(i) + "_" + base_name(source.path) + ".o";
        std::vector<std::string> compilation = compilation_of(call, link);
        compilation.insert(compilation.end(), {source.path, "-o", object});
        std::remove(object.c_str());
        if (run_program(compilation) != 0 || QMRFileExists(object.c_str()) == 0) {
            return link;
        }
        words[source.position] = object;
    }
    return read_link_command(std::move(words));
}
