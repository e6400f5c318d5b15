// The same road as an archive step takes, on the objects of a link, up to the stub: that of a link
// is a table, which only has to be assembled.
#include "toolset/linkdriver/module_stub.h"

#include "commonfunc/Caddis_func.h"
#include "commonfunc/build_id.h"
#include "commonfunc/file_io.h"
#include "commonfunc/file_ops.h"
#include "commonfunc/file_tree.h"
#include "commonfunc/message.h"
#include "commonfunc/path_name.h"
#include "commonfunc/text.h"
#include "commonfunc/text_lines.h"
#include "contract/linked_libraries.h"
#include "contract/places.h"
#include "contract/project_root.h"
#include "contract/record.h"
#include "lltld/cov_paths.h"
#include "lltld/db_number.h"
#include "lltld/db_tidy.h"
#include "lltld/inst_file_list.h"
#include "lltld/inst_resolve.h"
#include "lltld/module_compile.h"
#include "lltld/prj_settings.h"
#include "lltld/source_tab.h"
#include "lltld/work_area.h"
#include "toolset/common/file_state.h"
#include "toolset/common/process.h"
#include "toolset/linkdriver/kept_stub.h"
#include "toolset/linkdriver/module_table.h"
#include "toolset/linkdriver/plain_object.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <iterator>
#include <system_error>

namespace
{

/// Work areas of one name that are looked at.
constexpr int MAX_AREAS = 1000;

/// Bytes of a module name that are used.
constexpr std::size_t NAME_LENGTH = 200;

/// NAME.so or NAME.so.1.2.
bool names_shared_library(const std::string& output)
{
    const std::string name = base_name(output);
    const std::size_t at = name.find(".so");
    return at != name.npos && (at + 3 == name.size() || name[at + 3] == '.');
}

/// The output whose work area this is; empty when it has none or that output is gone.
std::string owner_of_area()
{
    const std::string owner = output_of_work_area();
    return QMRFileExists(owner.c_str()) != 0 ? owner : "";
}

/// Makes the directories of a work area as `enter_work_area` does it, without two processes for
/// each: a first link would spend a third of its time on them. What fails here is left to that.
void make_directories(const std::string& area)
{
    std::error_code unused;
    for (const char* part : {"/db", "/log", "/obj/before", "/obj/after", "/ini"}) {
        std::filesystem::create_directories(area + part, unused);
    }
}

/// As `clear_work_area` does it, without a shell: a build links many programs.
void empty_work_area()
{
    const std::string area = g_lxprj->szCovDictPath;
    remove_entries(places::db(area), "db");
    remove_entries(area + "/obj/before", "");
    remove_entries(area + "/ini", "");
}

/// The assembler of the objects, as the first source's record has it.
Words assembler_of_module()
{
    for (const _InstFile* node = instFileList.pHead; node != nullptr; node = node->pNext) {
        std::string bytes;
        const std::string path = places::record(temp_db_dir(node->szInstFileName.c_str()));
        if (read_whole_file(path, bytes) == Reading::done) {
            try {
                const std::vector<Record> records = read_records(bytes);
                if (!records.empty() && !records[0].assembler.empty()) {
                    return records[0].assembler;
                }
            } catch (const FormatError& error) {
                notice("'%s' is not read: %s", path.c_str(), error.what());
            }
        }
    }
    return {"as"};
}

/// Assembles the module's table; its object, or an empty path after a message.
std::string assemble_table()
{
    _SOURCEFILE_TAB sources;
    const std::string object = stub_object_path();
    std::remove(object.c_str());
    std::string text;
    if (CodeMeasure_Client_GetSourceFileTab(&sources) != 0 &&
        write_merged_table(sources, nullptr)) {
        text = module_table(sources, TUSK_Build_GetBUID());
    }
    release_table(sources);
    Words command = assembler_of_module();
    command.insert(command.end(), {"-o", object});
    return !text.empty() && run_program(command, {&text}) == 0 ? object : "";
}

} // namespace

bool load_settings()
{
    return Caddis_LD_Initial() != 0 && g_lxprj->szCovDictPath[0] != '\0';
}

bool choose_work_area(const std::string& wanted, const std::string& output,
                      const std::set<std::string>& taken)
{
    LinuxPrjItem& prj = *g_lxprj;
    const std::string root = prj.szCovDictPath;
    const std::string name =
        wanted.substr(0, NAME_LENGTH) + (names_shared_library(output) ? "_so" : "_exe");
    copy_bounded(prj.szObjFile, absolute_path(output));
    for (int number = 1; number <= MAX_AREAS; ++number) {
        const std::string candidate = number == 1 ? name : name + "_" + std::to_string(number);
        const std::string place = in_place_of_area(root, candidate);
        if (!place.empty()) {
            notice("'%s' stands where the work area of '%s' would go; another name is taken",
                   place.c_str(), output.c_str());
        }
        if (taken.count(candidate) != 0 || !place.empty()) {
            continue;
        }
        const std::string area = places::work_area(root, candidate);
        if (area.size() < sizeof prj.szCovDictPath) {
            make_directories(area);
        }
        if (!enter_work_area(root, candidate)) {
            return false;
        }
        const std::string owner = owner_of_area();
        if (owner.empty() || owner == prj.szObjFile) {
            return true;
        }
    }
    return false;
}

void make_room_for_output(const std::string& project, const std::string& output)
{
    const std::string root = root_of_project(project);
    const std::string path = absolute_path(output);
    if (root.empty() || path != absolute_path(root) + "/" + base_name(output) ||
        !is_place_of_area(path)) {
        return;
    }
    notice(
        "'%s' is also the place of a library's work area, which is removed: its members are reported as part of what links them; set qmr_current_prj_path to a directory of its own, as TUSK_INIT.SH does",
        output.c_str());
    remove_tree(path);
}

void record_libraries(const std::vector<LinkedLibrary>& libraries)
{
    std::vector<LinkedLibrary> known;
    std::copy_if(libraries.begin(), libraries.end(), std::back_inserter(known),
                 [](const LinkedLibrary& library) { return !library.buid.empty(); });
    const std::string path = places::linked_libraries(g_lxprj->szCovDictPath);
    if (!file_holds(path, to_text(known))) {
        replace_file(path, to_text(known));
    }
}

std::string make_stub(const LinkCommand& link, const std::vector<ScannedObject>& objects)
{
    const KeptStub kept(link, objects);
    if (kept.is_valid()) {
        std::printf("The stub of '%s' is kept: nothing that it is made of has changed.\n",
                    g_lxprj->modName);
        SetModCompileCmd();
        return stub_object_path();
    }
    kept.forget();
    const std::size_t warnings = warnings_printed();
    empty_work_area();
    remove_entries(std::string(g_lxprj->szCovDictPath) + "/obj", PLAIN_OBJECT);
    if (register_scanned_objects(objects) == 0 || !update_tuple_database() ||
        TidyCoverageDB() == 0) {
        return "";
    }
    copy_saved_objects();
    std::string stub = assemble_table();
    // What could not be copied now is copied by the next link.
    if (!stub.empty() && warnings_printed() == warnings) {
        kept.keep();
    }
    return stub;
}
