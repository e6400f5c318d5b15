// States of files are compared, not their contents, so that a link of many objects reads none of
// them. What the stub is made of is looked at before it is made: what changes meanwhile makes the
// next link make it again. A link that was stopped has left no state, or that of other files.
#include "toolset/linkdriver/kept_stub.h"

#include "commonfunc/Caddis_func.h"
#include "commonfunc/env.h"
#include "commonfunc/file_io.h"
#include "commonfunc/file_ops.h"
#include "contract/places.h"
#include "lltld/cov_paths.h"
#include "lltld/prj_settings.h"
#include "toolset/common/driver_call.h"
#include "toolset/common/file_state.h"
#include "toolset/linkdriver/module_table.h"

#include <cstdio>

namespace
{

/// All settings, as the table of no sources holds them, and this program.
std::string state_of_settings()
{
    return module_table({}, env_text("PRODUCT_VERSION").c_str()) + g_lxprj->szObjFile + "\n" +
           g_lxprj->szLLTTEMP + "\n" + std::to_string(g_iSupportSameName) +
           state_of_file(program_directory() + "/lltld");
}

/// The files in the temporary area that a source's part of the stub and work area is made of.
std::string state_of_records(const char* symbol)
{
    return symbol + state_of_tree(temp_db_dir(symbol), {}) + state_of_file(temp_ini_path(symbol)) +
           state_of_file(temp_saved_object_path(symbol));
}

} // namespace

KeptStub::KeptStub(const LinkCommand& link, const std::vector<ScannedObject>& objects)
    : made_of_(state_of_settings())
{
    for (const std::string& word : link.words) {
        const std::string file = word[0] == '@' ? word.substr(1) : word; // a list of words
        made_of_ += word + (word == link.output ? "\n" : state_of_file(file));
    }
    for (const auto* inputs : {&link.objects, &link.archives}) { // also those that no word names
        for (const LinkInput& input : *inputs) {
            made_of_ += input.path + state_of_file(input.path);
        }
    }
    for (const ScannedObject& object : objects) {
        for (const CoverageSymbol& symbol : object.symbols) {
            made_of_ += state_of_records(symbol.name.c_str());
        }
    }
}

bool KeptStub::is_valid() const
{
    return QMRFileExists(stub_object_path().c_str()) != 0 && // also where links lead elsewhere
           file_holds(places::stub_state(g_lxprj->szCovDictPath), text());
}

void KeptStub::forget() const
{
    std::remove(places::stub_state(g_lxprj->szCovDictPath).c_str());
}

void KeptStub::keep() const
{
    replace_file(places::stub_state(g_lxprj->szCovDictPath), text());
}

std::string KeptStub::text() const
{
    // The list of libraries is written by each link.
    const std::string area = state_of_tree(g_lxprj->szCovDictPath,
                                           {places::stub_state(""), places::linked_libraries("")});
    return "lltstub 1\n" + hash_name({made_of_, area}) + "\n";
}
