// The tuple database: lines of SOURCE, tab, OBJECT, tab, SYMBOL for the new records, an empty line,
// the same for the old file, an empty line, and bytes at the old file's end.
#include "lltld/tuple_db.h"
#include "commonfunc/Caddis_func.h"
#include "fuzz/fuzz.h"
#include "fuzz/models.h"
#include "lltld/inst_resolve.h"

#include <filesystem>
#include <set>

namespace
{

using fuzz::Texts; // of a record: source, object, symbol

std::string bytes_of(const std::vector<Texts>& records)
{
    std::string bytes;
    for (const Texts& record : records) {
        for (const std::string& field : record) {
            bytes += field + std::string(260 - field.size(), '\0');
        }
    }
    return bytes;
}

/// The records of a file, the last one filled up.
std::vector<Texts> records_in(std::string file)
{
    std::vector<Texts> records((file.size() + 779) / 780);
    file.resize(780 * records.size());
    for (std::size_t i = 0; i < 3 * records.size(); ++i) {
        records[i / 3].push_back(file.substr(260 * i, 259).c_str());
    }
    return records;
}

std::vector<Texts> texts_of(const std::vector<_STInstInfo>& records)
{
    std::vector<Texts> texts;
    for (const _STInstInfo& record : records) {
        texts.push_back({record.szSrcFileName, record.szObjFileName, record.szSymbolName});
    }
    return texts;
}

/// Records with the texts of the others, up to a NUL.
std::vector<_STInstInfo> in_memory(const std::vector<Texts>& records)
{
    std::vector<_STInstInfo> out;
    for (const Texts& texts : records) {
        out.push_back({texts[0].c_str(), texts[1].c_str(), texts[2].c_str()});
    }
    return out;
}

std::vector<Texts> read_lines(fuzz::Input& input)
{
    std::vector<Texts> records;
    for (std::string line; records.size() < 20 && !(line = input.line()).empty();) {
        records.push_back(fuzz::pieces_of(line, '\t'));
        records.back().resize(3);
        for (std::string& field : records.back()) {
            field = field.substr(0, 259);
        }
    }
    return records;
}

/// Replaces the first old record of another symbol at the same place; the symbols that go.
Texts replace_superseded(std::vector<Texts>& old, const std::vector<Texts>& fresh)
{
    Texts gone;
    for (const Texts& record : old.empty() ? std::vector<Texts>() : fresh) {
        const auto at = std::find_if(old.begin(), old.end(), [&](const Texts& other) {
            return other[0] == record[0] && other[1] == record[1] && other[2] != record[2];
        });
        if (at != old.end()) {
            gone.push_back((*at)[2]);
            old.erase(at);
            old.push_back(record);
        }
    }
    old = old.empty() ? fresh : old;
    return gone;
}

bool stands_for_files(const std::string& symbol)
{
    return !symbol.empty() && symbol != ".." && symbol.find('/') == std::string::npos;
}

/// The files that a compile left of a symbol.
Texts files_of(const std::string& symbol)
{
    const std::string area = "LLTTEMP/codemeasure/";
    return {area + "db/db" + symbol, area + "ini/" + symbol + ".ini",
            area + "obj/after/" + symbol + ".o", area + "obj/before/" + symbol};
}

/// Only what superseded symbols left goes; in the second last place all that begins with "S.".
void check_update(std::vector<Texts> old, const std::vector<Texts>& fresh)
{
    std::set<std::string> files;
    for (const Texts& record : old) {
        if (stands_for_files(record[2]) && record[2] != "." && record[2].size() < 250) {
            for (const std::string& file : files_of(record[2])) {
                fuzz::write_file(file, "");
                files.insert(file);
            }
        }
    }
    const std::vector<Texts> before = old;
    std::vector<_STInstInfo> records = in_memory(before), new_records = in_memory(fresh);
    UpdateDB_DelExpiredFile(records, new_records);
    std::set<std::string> expected = files;
    for (const std::string& symbol : replace_superseded(old, fresh)) {
        const Texts gone = stands_for_files(symbol) ? files_of(symbol) : Texts(4);
        for (const std::string& file : files) {
            const std::string start =
                gone[2].substr(0, gone[2].size() - std::min<std::size_t>(gone[2].size(), 1));
            const bool is_gone = std::find(gone.begin(), gone.end(), file) != gone.end() ||
                                 (!start.empty() && file.find(start) == 0);
            expected.erase(is_gone ? file : "");
        }
    }
    fuzz::same("records after the update", bytes_of(old), bytes_of(texts_of(records)));
    for (const std::string& file : files) {
        fuzz::same(file.c_str(), static_cast<long long>(expected.count(file)),
                   std::filesystem::remove(file));
    }
}

void check_write(const std::vector<Texts>& records)
{
    std::vector<_InstFile> nodes(records.size());
    for (std::size_t i = 0; i < records.size(); ++i) {
        nodes[i].szSrcFileName = records[i][0];
        nodes[i].szObjFileName = records[i][1];
        WriteInstFileNameTolist(records[i][2].c_str(), &instFileList, &nodes[i]);
    }
    fuzz::same("the file is written", 1, WriteNewInstInfoToDb("new.db"));
    fuzz::same("file of the new records", bytes_of(records), fuzz::read_file("new.db"));
    instFileList = _InstFileList();
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    (fuzz::scratch() + "/LLTTEMP").copy(g_lxprj->szLLTTEMP, 400);
    for (const std::string& file : files_of("x")) {
        std::filesystem::create_directories(std::filesystem::path(file).parent_path());
    }
    const HeldMessages quiet;
    fuzz::Input input(data, size);
    const std::vector<Texts> fresh = read_lines(input);
    const std::string file = bytes_of(read_lines(input)) + input.rest();
    const std::vector<Texts> old = records_in(file);
    fuzz::write_file("old.db", file);
    std::vector<_STInstInfo> read;
    InstTexts texts;
    fuzz::same("the file is read", 1, ReadOldInstInfoFromDb("old.db", read, texts));
    fuzz::same("number of records", static_cast<long long>(old.size()),
               static_cast<long long>(read.size()));
    for (std::size_t i = 0; i < old.size(); ++i) {
        fuzz::same("record", old[i],
                   {read[i].szSrcFileName, read[i].szObjFileName, read[i].szSymbolName});
    }
    for (const Texts& record : fresh) {
        _STInstInfo info = {"?", "?", record[2].c_str()};
        const auto first = std::find_if(old.begin(), old.end(),
                                        [&](const Texts& other) { return other[2] == record[2]; });
        const bool is_known = first != old.end();
        fuzz::same("the symbol is known", is_known, GetSymbolInfoFromTuple(&info, read));
        fuzz::same("its places", {is_known ? (*first)[0] : "?", is_known ? (*first)[1] : "?"},
                   {info.szSrcFileName, info.szObjFileName});
    }
    check_write(fresh);
    check_update(old, fresh);
    return 0;
}
