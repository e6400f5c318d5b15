// What the last build and the runs left: the records of the modules against the files they name.
#include "commonfunc/env.h"
#include "commonfunc/file_io.h"
#include "commonfunc/file_tree.h"
#include "commonfunc/path_name.h"
#include "commonfunc/shell.h"
#include "commonfunc/text.h"
#include "contract/places.h"
#include "contract/project_root.h"
#include "contract/record.h"
#include "lltcov/common/console.h"
#include "lltcov/common/coverage_names.h"
#include "lltcov/common/project.h"
#include "lltcov/doctor/doctor.h"
#include "lltcov/report/coverage.h"
#include "lltcov/report/project_data.h"
#include "lltcov/report/shown_sources.h"
#include "lltcov/report/whole_project.h"
#include "lltld/archive_file.h"
#include "lltld/inst_file_list.h"
#include "lltld/object_scan.h"

#include <algorithm>
#include <ctime>
#include <map>
#include <string>
#include <sys/stat.h>
#include <utility>
#include <vector>

namespace
{

/// A temporary file that is younger may be in use, in seconds.
constexpr std::time_t MIN_AGE = 60;

std::string build_again(const std::string& before = "")
{
    return cured_by(before + "lltcov run -- make", "with make");
}

bool holds_symbol(const ScannedObject& object, const std::string& symbol)
{
    return std::any_of(object.symbols.begin(), object.symbols.end(),
                       [&](const CoverageSymbol& found) { return found.name == symbol; });
}

/// Archives with instrumented members below the project and as modules record them, by module.
class Archives
{
public:
    explicit Archives(Findings& findings) : findings_(findings) {}

    void add(const std::string& path, const std::string& content)
    {
        const std::string module = module_of_archive(path);
        // Of whatever name: the archive may have been renamed since, or hold members of others.
        const bool has_stub = contains(content, STUB_PREFIX);
        if (!is_archive(content) || (!has_stub && !contains(content, ARRAY_PREFIX))) {
            return;
        }
        if (!has_stub) {
            findings_.add(
                "archives without a stub",
                "'" + path +
                    "' has instrumented members and no stub: they count only where lltld links them" +
                    (fits_identifier(module)
                         ? build_again("rm " + shell_word(path) + " && ")
                         : "; its name must be of letters, digits, '_' and '-'"));
        }
        const std::size_t hash = std::hash<std::string>()(content);
        const auto [known, is_new] = seen_.emplace(module, Archive{path, hash});
        if (!is_new && known->second.path != path && known->second.hash != hash) {
            findings_.add("shared work areas", "'" + known->second.path + "' and '" + path +
                                                   "' share the work area of '" + module +
                                                   "'; give the libraries different names");
        }
    }

private:
    struct Archive {
        std::string path;
        std::size_t hash;
    };

    Findings& findings_;
    std::map<std::string, Archive> seen_;
};

void check_symbol(const std::string& symbol, Findings& findings)
{
    if (symbol.size() > MAX_SYMBOL) {
        findings.add(
            "long symbols",
            "symbol '" + symbol +
                "' has more than 31 characters: its archive step fails; use a driver with shorter ones");
    }
}

} // namespace

void check_sources(Examined& examined, Findings& findings)
{
    CoverageMaker(examined.data, Counting::lines, findings).coverage_of(all_objects(examined.data));
}

void check_objects(Examined& examined, Findings& findings)
{
    Progress progress("looking at objects", examined.data.objects.size());
    for (const InstrumentedObject& object : examined.data.objects) {
        progress.step();
        const std::string& path = object.record.object;
        ScannedObject scanned;
        if (!scan_object(path, scanned)) {
            findings.add("objects that are gone", "'" + path + "' is gone or renamed since '" +
                                                      object.area + "' was filled" + build_again());
        } else if (!holds_symbol(scanned, object.symbol)) {
            findings.add("objects compiled anew", "'" + path + "' was compiled anew since '" +
                                                      object.area + "' was filled" +
                                                      build_again("make clean && "));
        }
    }
}

void check_archives(Examined& examined, Findings& findings)
{
    Archives archives(findings);
    std::string content;
    for (const ModuleData& module : examined.data.modules) {
        if (read_whole_file(module.output, content) == Reading::missing) {
            findings.add("modules without output",
                         "'" + module.output + "' of module " + module.module.name + " is gone" +
                             cured_by("lltcov clean --gone", "if it was not renamed"));
        } else if (is_archive(content)) {
            archives.add(module.output, content);
        }
    }
    for (const std::string& path : examined.files) {
        if (ends_with(path, ".a") && read_whole_file(path, content) == Reading::done) {
            archives.add(path, content);
            const std::string place = in_place_of_area(examined.data.root, module_of_archive(path));
            if (!place.empty()) {
                findings.add("taken places",
                             "'" + place + "' stands where the coverage data of '" + path +
                                 "' would go" +
                                 cured_by("unset qmr_current_prj_path && " + settings_command()));
            }
        }
    }
}

void check_names(Examined& examined, Findings& findings)
{
    for (const std::string& name :
         names_in(places::db(places::temporary_area(examined.data.root)))) {
        check_symbol(begins_with(name, "db") ? name.substr(2) : "", findings);
    }
    for (const InstrumentedObject& object : examined.data.objects) {
        check_symbol(object.symbol, findings);
        for (const std::string& path : {object.record.source, object.record.object}) {
            if (path.size() >= INST_NAME_SIZE) {
                findings.add(
                    "long paths",
                    "'" + path +
                        "' has more than 259 bytes: archive steps cut it; build in a shorter path");
            }
        }
    }
    for (const Module& module : modules_of(examined.data.root)) {
        if (!fits_identifier(module.name)) {
            findings.add("module names",
                         "module '" + module.name +
                             "' is no C identifier: its stub does not compile; rename the library");
        }
    }
}

void check_sockets(Examined& examined, Findings& findings)
{
    if (env_text("LLT_DISABLE_SOCKET") == "1" || has_no_settings()) {
        return;
    }
    for (const ModuleData& module : examined.data.modules) {
        std::string archive;
        std::string command;
        read_whole_file(module.output, archive);
        read_whole_file(places::compile_command(module.module.area), command);
        if (is_archive(archive) && !declares_port(command)) {
            findings.add(
                "sockets",
                "sockets are on, but nothing declares g_TUSKSockBindPort for the stub of " +
                    module.module.name + cured_by("export LLT_DISABLE_SOCKET=1"));
        }
    }
}

void check_dumps(Examined& examined, Findings& findings)
{
    const std::string directory = dump_root(examined.data.root);
    const std::vector<std::string> names = names_in(directory);
    if (std::any_of(names.begin(), names.end(), is_dump)) {
        add_dumps(examined.data, directory, findings);
    }
    note_left_out(examined.data, findings);
}

void check_leftovers(Examined& examined, Findings& findings)
{
    for (const std::string& path : examined.files) {
        struct stat info = {};
        if (begins_with(base_name(path), ".lltwrapper-") && ::lstat(path.c_str(), &info) == 0 &&
            std::time(nullptr) - info.st_mtime > MIN_AGE) {
            findings.add("leftovers", "'" + path + "' is left of an interrupted step" +
                                          cured_by("rm " + shell_word(path)));
        }
    }
}
