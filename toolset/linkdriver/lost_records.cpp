// Looked for only when something is missing: objects are large, and records are rarely lost.
#include "toolset/linkdriver/lost_records.h"

#include "commonfunc/Caddis_func.h"
#include "commonfunc/file_ops.h"
#include "contract/linked_libraries.h"
#include "contract/places.h"
#include "contract/record.h"
#include "lltld/archive_file.h"
#include "lltld/cov_paths.h"
#include "lltld/object_scan.h"
#include "toolset/common/process.h"
#include "toolset/common/records.h"
#include "toolset/linkdriver/archive_coverage.h"
#include "toolset/linkdriver/link_file.h"

#include <algorithm>
#include <cstddef>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace
{

bool has_records(const std::string& symbol)
{
    return QMRFileExists(temp_tab_path(symbol.c_str()).c_str()) != 0 &&
           QMRFileExists(temp_ini_path(symbol.c_str()).c_str()) != 0;
}

std::set<std::string> lost_symbols(const LinkCoverage& coverage)
{
    std::set<std::string> lost;
    const auto look_at = [&](const std::string& symbol) {
        if (!has_records(symbol)) {
            lost.insert(symbol);
        }
    };
    for (const ScannedObject& object : coverage.objects) {
        for (const CoverageSymbol& symbol : object.symbols) {
            look_at(symbol.name);
        }
    }
    for (const LinkedLibrary& library : coverage.libraries) {
        for (const std::string& symbol : library.symbols) {
            look_at(symbol);
        }
    }
    return lost;
}

void restore_from(const std::string& object, const std::set<std::string>& lost)
{
    for (const Record& record : records_of(object)) {
        if (lost.count(record.symbol) != 0) {
            try {
                leave_records(places::area_in(g_lxprj->szLLTTEMP), record, object,
                              SourceState::unknown);
            } catch (const std::runtime_error& error) {
                notice("the records of '%s' are lost: %s", record.source.c_str(), error.what());
            }
        }
    }
}

void restore(const LinkCommand& link, const std::set<std::string>& lost)
{
    std::string content;
    for (const LinkInput& input : link.objects) {
        if (read_input(input.path, content)) {
            restore_from(content, lost);
        }
    }
    for (const LinkInput& input : link.archives) {
        if (read_input(input.path, content)) {
            for_each_member(input.path, read_archive_file(content), [&](std::string_view member) {
                restore_from(std::string(member), lost);
            });
        }
    }
}

void leave_out(LinkCoverage& coverage, const std::set<std::string>& lost)
{
    std::size_t number = 0;
    for (ScannedObject& object : coverage.objects) {
        auto& symbols = object.symbols;
        const auto kept = std::stable_partition(
            symbols.begin(), symbols.end(),
            [&](const CoverageSymbol& symbol) { return lost.count(symbol.name) == 0; });
        if (kept != symbols.end() && number == 0) {
            notice(
                "'%s' names a counter array of unknown size: its record '%s' is gone; where the link fails, compile it again",
                object.path.c_str(), temp_tab_path(kept->name.c_str()).c_str());
        }
        number += static_cast<std::size_t>(symbols.end() - kept);
        symbols.erase(kept, symbols.end());
    }
    if (number > 1) {
        notice("records of %zu counter arrays are gone in all", number);
    }
    auto& objects = coverage.objects;
    objects.erase(
        std::remove_if(objects.begin(), objects.end(),
                       [](const ScannedObject& object) { return object.symbols.empty(); }),
        objects.end());
}

} // namespace

void restore_lost_records(const LinkCommand& link, LinkCoverage& coverage)
{
    const std::set<std::string> lost = lost_symbols(coverage);
    if (!lost.empty()) {
        restore(link, lost);
        leave_out(coverage, lost_symbols(coverage));
    }
}
