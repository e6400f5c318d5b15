// What a stub says of its sources: stub mode, custom type ("1" for one), and a line for each
// source, of its name and, after a blank, the number of points in its own table, nothing for an
// empty one; a name without a blank has no table. One text in 1,000 is given to a compiler.
#include "commonfunc/Caddis_func.h"
#include "contract/names.h"
#include "fuzz/fuzz.h"
#include "fuzz/models.h"
#include "lltld/db_number.h"
#include "lltld/stub_source.h"

#include <cstdlib>
#include <filesystem>
#include <map>
#include <set>

namespace
{

using fuzz::Texts;

std::string stem(const std::string& name)
{
    return name.substr(0, name.rfind('.'));
}

/// The array line of a mode, "-" for its element type and "N" for its size.
std::string array_line(int mode, bool is_custom, const std::string& name, std::int64_t points)
{
    const char* const lines[] = {"- A[N] = {0};\n",
                                 "- A[N] = {0};\n",
                                 "char A[N] = {0};\n",
                                 "",
                                 "- A[N] = {0};\n",
                                 "extern - A[];\n",
                                 "char A[N] = {0};\n",
                                 "extern - A[];\n",
                                 "extern - A[];\n",
                                 "extern char A[];\n",
                                 ""};
    const std::string line = lines[std::min(mode, 10)];
    points = points == 0 ? 1 : points;
    points = mode == 0 || mode == 4 || mode == 7 ? ((points - 1) >> 5) + 1 : points;
    const bool is_long = is_custom && line[0] == '-'; // the letter l follows the number then
    std::string out;
    for (const char c : line) {
        out += c == '-'   ? (is_custom ? "unsigned long" : "unsigned int")
               : c == 'A' ? "g_QMRCovData_" + name
               : c != 'N' ? std::string(1, c)
               : is_long  ? std::to_string(static_cast<std::uint32_t>(points)) + "l"
                          : std::to_string(static_cast<std::int32_t>(points));
    }
    return out;
}

struct Model {
    Texts names;
    std::map<std::string, std::string> tables; ///< of the sources' own, by the stem that is used
    std::string arrays, merged, calls;
    std::int64_t start = 0;
    bool is_done = true, can_be_compiled = true;
};

void read_sources(fuzz::Input& input, Model& model)
{
    std::filesystem::remove_all("codemeasure");
    while (!input.empty() && model.names.size() < 12) {
        std::string line = input.line();
        std::replace(line.begin(), line.end(), '/', '_'); // a name is one in a directory
        const std::size_t blank = line.find(' ');
        const std::string& name =
            model.names.emplace_back(line.substr(0, std::min<std::size_t>(blank, 255)));
        const std::string symbol = stem(name.substr(0, MAX_SYMBOL));
        if (blank == std::string::npos) {
            continue;
        }
        _SOURCEFILE_OBJECT own = {};
        own.instnum = static_cast<std::int32_t>(std::atoll(line.substr(blank, 12).c_str()));
        model.tables[symbol] =
            std::string(bytes_of(own)).substr(0, line.size() > blank + 1 ? 280 : 0);
        std::filesystem::create_directories("codemeasure/db/db" + symbol);
        fuzz::write_file("codemeasure/db/db" + symbol + "/.tab", model.tables[symbol]);
    }
}

void number(Model& model, int mode, bool is_custom)
{
    std::set<std::string> known;
    for (std::size_t i = 0; i < model.names.size(); ++i) {
        const std::string& name = model.names[i];
        const std::string symbol = stem(name.substr(0, MAX_SYMBOL));
        model.is_done = model.is_done && model.tables.count(symbol) != 0;
        _SOURCEFILE_OBJECT record = {};
        if (model.is_done && !model.tables[symbol].empty()) {
            model.tables[symbol].copy(reinterpret_cast<char*>(&record), sizeof record);
            record.fileid = static_cast<int>(i);
            name.copy(record.szName, 255);
            record.inststartpoint = static_cast<std::int32_t>(model.start);
            model.merged += bytes_of(record);
        }
        const std::int32_t points = record.instnum;
        const std::int64_t rounded = points > 0 ? (std::int64_t{points} + 31) / 32 * 32 : 0;
        model.start += mode == 0 || mode == 7 ? rounded : points;
        model.arrays += model.is_done ? array_line(mode, is_custom, symbol, points) : "";
        const auto bytes = static_cast<std::int32_t>(mode == 0   ? rounded / 8
                                                     : mode == 2 ? points
                                                                 : std::int64_t{4} * points);
        model.calls += "    QMR_AddCoverageBuf(pMod, " + std::to_string(i) + ", (char*)\"" + name +
                       "\", (unsigned int *)g_QMRCovData_" + stem(name) + ", \n        " +
                       std::to_string(bytes) + ", " + std::to_string(points) + ");\n";
        model.can_be_compiled = model.can_be_compiled && points >= 0 &&
                                known.insert(symbol).second && stem(name) == symbol &&
                                name.find_first_of("\"\\\r") == std::string::npos &&
                                fuzz::identifier_of(symbol) == symbol;
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::scratch().copy(g_lxprj->szLLTTEMP, 400);
    fuzz::scratch().copy(g_lxprj->szCovDictPath, 400);
    const HeldMessages quiet;
    fuzz::Input input(data, size);
    const int mode = g_lxprj->stubmode = static_cast<int>(input.number(12));
    const bool is_custom = input.number(2) != 0;
    g_lxprj->szCov_type[0] = is_custom ? 'x' : '\0';
    Model model;
    read_sources(input, model);
    number(model, mode, is_custom);
    std::vector<_SOURCEFILE_OBJECT> records(model.names.size(), _SOURCEFILE_OBJECT{});
    for (std::size_t i = 0; i < records.size(); ++i) {
        records[i].fileid = static_cast<int>(i);
        model.names[i].copy(records[i].szName, 255);
    }
    const auto count = static_cast<int>(records.size());
    const _SOURCEFILE_TAB table = {records.data(), 280 * count, count};
    std::filesystem::remove(".prj");
    std::FILE* files[] = {std::fopen("arrays", "w"), std::fopen("merged", "w"),
                          std::fopen("calls", "w")};
    fuzz::same("all tables are there", model.is_done, LD_UpDateCovDbTab(table, files[0], files[1]));
    LD_WriteCoverageInterface(table, files[2]);
    for (std::FILE* file : files) {
        std::fclose(file);
    }
    fuzz::same("arrays", model.arrays, fuzz::read_file("arrays"));
    fuzz::same("merged table", model.merged, fuzz::read_file("merged"));
    fuzz::same("registration", model.calls, fuzz::read_file("calls"));
    const std::string project = fuzz::read_file(".prj");
    for (const std::string& key :
         {"start_instpoint=" + std::to_string(static_cast<std::int32_t>(model.start)),
          "coverage_counter_mode=" + std::to_string(mode >= 7 && mode <= 9 ? mode - 7 : mode),
          std::string("SupportSameName =1")}) {
        fuzz::same(key.c_str(), model.is_done, project.find(key + "\n") != std::string::npos);
    }
    static int runs = 0;
    if (model.is_done && model.can_be_compiled && ++runs % 1000 == 0) {
        fuzz::write_file("stub.c", "int QMR_AddCoverageBuf();\nvoid* pMod;\n" + model.arrays +
                                       "void start(void)\n{\n" + model.calls + "}\n");
        fuzz::same("status of the compiler", 0,
                   mode == 3 || mode > 9 ? 0 : std::system("gcc -fsyntax-only -w stub.c"));
    }
    return 0;
}
