// A directory is filled under a temporary name and then takes its place; where an older one stands
// (the same source compiled again), the two change places and the old one goes. A file that already
// is as it would be written stays: on disks, files that take the place of others cost most of what
// a compile pays for its records.
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
#include "toolset/common/file_state.h"
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
#include <iterator>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

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
    const std::size_t end = path.rfind('/');
    bool made = ::mkdir(path.c_str(), 0777) == 0 || errno == EEXIST;
    if (!made && errno == ENOENT && end != path.npos && end != 0) {
        make_directories(path.substr(0, end));
        made = ::mkdir(path.c_str(), 0777) == 0 || errno == EEXIST;
    }
    if (!made) {
        fail("create", path);
    }
}

/// The source's extension, or that of C in place of an unusual one.
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
    if (!file_holds(path, text) && replace_file(path, text) != Writing::done) {
        fail("write", path);
    }
}

/// Writes a file of a directory that nobody else knows yet.
void write_new(const std::string& path, const std::string& text)
{
    const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    const bool written = file >= 0 && write_all(file, text.data(), text.size());
    if (file < 0 || (::close(file) != 0 && errno != EINTR) || !written) {
        warn_not_written(path);
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
    const std::pair<std::string, std::string> files[] = {
        // by their paths in the directory
        {places::table(""), table_record(record, state)},
        {places::compile_command(""), record.compile_command},
        {places::record(""), to_bytes(record)}};
    const auto stands = [&](const auto& file) {
        return file_holds(place + file.first, file.second);
    };
    const TurnLock turn(area, beside);
    remove_tree(beside);
    if (std::all_of(std::begin(files), std::end(files), stands) &&
        ::utimensat(AT_FDCWD, places::table(place).c_str(), nullptr, 0) == 0) {
        return; // the time of the table is that of the compile: reports hold headers against it
    }
    make_directories(beside);
    for (const auto& [path, text] : files) {
        write_new(beside + path, text);
    }
    move_into_place(beside, place);
}
