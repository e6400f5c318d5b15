// A directory is filled under a temporary name and then takes its place; where an older one stands
// (the same source compiled again), the two change places and the old one goes.
#include "toolset/common/records.h"

#include "commonfunc/file_io.h"
#include "commonfunc/file_tree.h"
#include "commonfunc/path_name.h"
#include "commonfunc/text.h"
#include "commonfunc/text_lines.h"
#include "contract/names.h"
#include "contract/object_record.h"
#include "contract/places.h"
#include "contract/source_ini.h"
#include "contract/source_table.h"
#include "contract/stub_modes.h"
#include "toolset/common/driver_call.h"
#include "toolset/common/process.h"
#include "toolset/common/source_name.h"
#include "toolset/common/turn_lock.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <stdexcept>
#include <sys/stat.h>

namespace
{

/// Bytes of a source's name in a symbol: "_" and 16 digits follow.
constexpr std::size_t NAME_PART = MAX_SYMBOL - 17;

[[noreturn]] void fail(const std::string& what, const std::string& path)
{
    throw std::runtime_error("cannot " + what + " '" + path + "': " + std::strerror(errno));
}

void make_directories(const std::string& path)
{
    for (std::size_t at = path.find('/', 1);; at = path.find('/', at + 1)) {
        const std::string part = path.substr(0, at);
        if (::mkdir(part.c_str(), 0777) != 0 && errno != EEXIST) {
            fail("create", part);
        }
        if (at == path.npos) {
            return;
        }
    }
}

/// The source's extension, or that of C for one that is no usual one.
std::string extension_in_table(const std::string& source)
{
    const std::string suffix = suffix_of(source);
    const auto is_plain = [](unsigned char c) { return std::isalnum(c) != 0 || c == '+'; };
    const bool is_usual =
        !suffix.empty() && suffix.size() < 8 && std::all_of(suffix.begin(), suffix.end(), is_plain);
    return is_usual ? suffix : "c";
}

std::string table_record(const Record& record, SourceState state)
{
    _SOURCEFILE_OBJECT entry = {};
    copy_bounded(entry.szName,
                 name_in_table(record.symbol, extension_in_table(record.source), record.or_bytes));
    struct stat info = {};
    if (state == SourceState::as_compiled) {
        if (::stat(record.source.c_str(), &info) == 0) {
            entry.size = static_cast<std::uint32_t>(info.st_size);
            entry.mtime = static_cast<std::uint32_t>(info.st_mtime);
        } else if (errno != ENOENT) {
            notice(
                "cannot look at '%s': %s; its later changes will not be noticed, compile it again",
                record.source.c_str(), std::strerror(errno));
        }
    }
    entry.instnum = points_of_array(record.stub_mode, record.array_bytes);
    return std::string(bytes_of(entry));
}

void write_whole(const std::string& path, const std::string& text)
{
    if (replace_file(path, text) != Writing::done) {
        fail("write", path);
    }
}

/// Gives the directory its name; one that has it already is removed.
void move_into_place(const std::string& from, const std::string& to)
{
    if (::rename(from.c_str(), to.c_str()) == 0) {
        return;
    }
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_EXCHANGE) != 0) {
        remove_tree(from);
        fail("replace", to);
    }
    remove_tree(from);
}

} // namespace

std::string symbol_of(const std::string& source, const std::vector<std::string>& texts)
{
    std::string name = base_name(source).substr(0, NAME_PART);
    for (char& c : name) {
        const bool letter = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
        c = letter || (c >= '0' && c <= '9') ? c : '_';
    }
    if (name.empty() || (name[0] >= '0' && name[0] <= '9')) {
        name.insert(0, 1, '_');
    }
    return name.substr(0, NAME_PART) + "_" + hash_name(texts);
}

std::vector<Record> records_of(std::string_view object)
{
    try {
        return read_records(record_section(object));
    } catch (const FormatError&) {
        return {};
    }
}

void leave_records(const std::string& area, const Record& record, const std::string& object,
                   SourceState state)
{
    if (record.array_bytes == 0) {
        return;
    }
    for (const char* part : places::FILLED_DIRECTORIES) {
        make_directories(area + part);
    }
    write_whole(places::saved_object(area, record.symbol), object);
    write_whole(places::ini(area, record.symbol), source_ini(record.source, record.object));
    const std::string place = places::symbol_db(area, record.symbol);
    // Named after the object, so that its next compile removes what a killed one has left.
    const std::string beside = places::db(area) + "/." + hash_name({record.object});
    const TurnLock turn(area, beside);
    remove_tree(beside);
    make_directories(beside);
    write_whole(places::table(beside), table_record(record, state));
    write_whole(places::compile_command(beside), record.compile_command);
    write_whole(places::record(beside), to_bytes(record));
    move_into_place(beside, place);
}
