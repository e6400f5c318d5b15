// The whole road of one command, with real shell commands and tools that only write their name
// down. The first line is the command: a number for the tool and its words, of letters, digits and
// a few signs, since the shell reads them. The second has five digits: stub mode, "lltwrapper_cfg",
// status of the tools, "SupportSameName", "LLTLD_AVOID_SAME_NAME". Then a letter and a name for
// each file, and a line of its bytes, "|" for NUL and "#" for "g_QMRCovData_": "o" beside the
// command, "s" all that a compile leaves under a symbol, "i" its INI file, "w" a file of the work
// area of libm.
#include "commonfunc/Caddis_func.h"
#include "fuzz/fuzz.h"
#include "fuzz/models.h"
#include "lltld/inst_file_list.h"
#include "lltld/prj_settings.h"
#include "lltld/program_objects.h"
#include "lltwrapper/cmd_parser.h"
#include "lltwrapper/mode_dispatch.h"
#include "lltwrapper/wrapper_state.h"

#include <cctype>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <map>

namespace
{

namespace fs = std::filesystem;
using fuzz::Texts;
using Tree = std::map<std::string, std::string>;

const std::string AREA = "p/libm/codemeasure/", TEMPORARY = "p/LLTTEMP/codemeasure/";

bool make_tools()
{
    const std::string bin = fuzz::scratch() + "/bin";
    fs::create_directory(bin);
    for (const char* name : {"gcc", "ar", "stubcc", "lltcc", "lltld", "lltld_kernel", "lltld_omu",
                             "lltld_noos", "hotpatch", "link_fixaddr_hotpatch"}) {
        const std::string tool = bin + "/" + name;
        fuzz::write_file(tool, "#!/bin/sh\necho ${0##*/} >>tools\nexit $END\n");
        fs::permissions(tool, fs::perms::owner_all);
    }
    ::setenv("PATH", (bin + ":/usr/bin:/bin").c_str(), 1);
    ::setenv("qmr_current_prj_path", (fuzz::scratch() + "/p").c_str(), 1);
    for (const char* name :
         {"isOverlappedCompile", "TimerPolicy", "SignalPolicy", "lltcovRootpath"}) {
        ::setenv(name, std::strcmp(name, "lltcovRootpath") != 0 ? "0" : "", 1);
    }
    return true;
}

/// The words of the command; nothing in them means anything to a shell.
Texts read_command(fuzz::Input& input)
{
    const char* const tools[] = {"gcc", "ar"};
    std::string line = std::string(tools[input.number(2)]) + " " + input.line().substr(0, 400);
    for (char& c : line) {
        c = std::isalnum(static_cast<unsigned char>(c)) != 0 || std::strchr("_.+=,:@%-/ ", c) ? c
                                                                                              : '_';
    }
    Texts words = {"lltwrapper", "-artool", "ar", "-arsuffix", ".a"};
    for (const std::string& word : fuzz::pieces_of(line, ' ')) {
        words.push_back(word[0] == '/' ? "." + word : word);
    }
    return words;
}

int read_environment(fuzz::Input& input)
{
    fuzz::Input digits = input;
    input.line();
    fuzz::set_environment("qmr_coverage_stub_mold", std::to_string(digits.number(11)));
    fuzz::set_environment("lltwrapper_cfg", std::to_string(digits.number(9)));
    const int end = static_cast<int>(digits.number(4));
    fuzz::set_environment("END", std::to_string(end));
    fuzz::set_environment("SupportSameName", std::to_string(digits.number(3)));
    fuzz::set_environment("LLTLD_AVOID_SAME_NAME", std::to_string(digits.number(2)));
    return end;
}

void leave_record(const std::string& symbol, const std::string& text)
{
    const std::string db = TEMPORARY + "db/db" + symbol;
    fs::create_directories(db);
    std::string table(280, '\0');
    text.copy(table.data() + 4, 200); // the name
    table[272] = static_cast<char>(text.size());
    fuzz::write_file(db + "/.tab", table);
    fuzz::write_file(db + "/CompileCmd.txt", "stubcc");
    fuzz::write_file(TEMPORARY + "ini/" + symbol + ".ini",
                     "[StubFiles]\nStubFilePath1=a.c\nObjFilePath=" + text + "\n");
    fuzz::write_file(TEMPORARY + "obj/before/" + symbol, text);
}

void make_tree(fuzz::Input& input)
{
    for (const char* gone : {"p", "in", "tools"}) {
        fs::remove_all(gone);
    }
    for (const std::string& path :
         {AREA + "db", TEMPORARY + "db", TEMPORARY + "ini", TEMPORARY + "obj/before",
          std::string("p/other"), std::string("in")}) {
        fs::create_directories(path);
    }
    for (const char* other : {"p/other/x.ini", "p/x.ini", "p/dbx", "in/x"}) {
        fuzz::write_file(other, "of others");
    }
    for (int files = 0; files < 12 && !input.empty(); ++files) {
        const char kind = input.byte();
        std::string name = input.line().substr(0, 200), text;
        for (const char c : input.line()) {
            text += c == '#' ? "g_QMRCovData_" : std::string(1, c == '|' ? '\0' : c);
        }
        std::replace(name.begin(), name.end(), '/', '_');
        if (name.empty() || name[0] == '.') {
            name = "x" + name;
        }
        if (kind == 's') {
            leave_record(name, text);
        } else {
            fuzz::write_file((kind == 'i'   ? TEMPORARY + "ini/"
                              : kind == 'w' ? AREA + (name == "x.prj" ? "" : "db/")
                                            : "in/") +
                                 (name == "x.prj" || name == "x.tab" ? name.substr(1) : name),
                             text);
        }
    }
}

/// Every file outside what the step owns: the module's work area and the temporary area.
Tree others(const std::string& module)
{
    Tree tree;
    for (const auto& entry : fs::recursive_directory_iterator(".")) {
        const std::string path = entry.path().string().substr(2);
        const bool is_own =
            path.rfind("p/LLTTEMP/", 0) == 0 ||
            (!module.empty() && path.rfind("p/" + module + "/codemeasure/", 0) == 0);
        if (!is_own && path != "output" && path != "tools" && entry.is_regular_file()) {
            tree[path] = fuzz::read_file(path);
        }
    }
    return tree;
}

void reset()
{
    for (std::string* text : {&pOriginalCmd, &strLinkName, &strLinkNameUser, &strLinkNameUserKo,
                              &strObjSuffix, &strBinSuffix, &strArTools, &strArSuffix, &arname,
                              &g_str_m32m64, &strLLTCC, &strLLTLD, &strLLTAR}) {
        text->clear();
    }
    vtor_objtypes.clear();
    vtor_obj.clear();
    lltcc_flag = lltld_flag = ar_flag = ori_flag = special_flag = iToken_wrapper = 0;
    while (const _InstFile* const node = instFileList.pHead) {
        instFileList.pHead = node->pNext;
        delete node;
    }
    instFileList = {};
    LinuxPrjItem::ReleaseInstance();
    LinuxPrjItem::GetInstance(); // in the same place
    g_iSupportSameName = 1;
}

void check_files(const std::string& area)
{
    for (const auto& [file, size] : {std::pair{"tuple.db", 780U}, std::pair{".tab", 280U}}) {
        fuzz::same(file, 0,
                   static_cast<long long>(fuzz::read_file(area + "db/" + file).size() % size));
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const bool once = make_tools();
    fuzz::holds("the tools are there", once);
    fuzz::Input input(data, size);
    Texts words = read_command(input);
    const int end = read_environment(input);
    make_tree(input);
    reset();
    std::vector<char*> argv;
    for (std::string& word : words) {
        argv.push_back(word.data());
    }
    argv.push_back(nullptr);
    const Tree everything = others("");
    const HeldMessages held;
    parser(static_cast<int>(words.size()), argv.data());
    read_project();
    const int status = dispatch_mode();
    const std::string module = ar_flag == 1 || ori_flag == 1 ? strLinkName : "";
    Tree before;
    for (const auto& [path, content] : everything) {
        if (module.empty() || path.rfind("p/" + module + "/codemeasure/", 0) != 0) {
            before[path] = content;
        }
    }
    fuzz::printed();
    const Tree after = others(module);
    fuzz::holds("others' files stay, and none is added", before == after);

    Texts ran;
    for (const std::string& tool : fuzz::pieces_of(fuzz::read_file("tools"), '\n')) {
        if (!tool.empty() && tool != "stubcc") {
            ran.push_back(tool);
        }
    }
    const bool is_refused = (ar_flag == 1 && status == 1) || (lltld_flag == 1 && strLLTLD.empty());
    fuzz::same("the tool ran", is_refused ? 0 : 1, static_cast<long long>(ran.size()));
    const bool is_hidden = (status & 0xFF) == 0 && end != 0;
    fuzz::holds("what fails is said", !(is_refused || is_hidden) || !held.warnings.empty());
    if (ar_flag == 1 && !is_refused) {
        check_files("p/" + module + "/codemeasure/");
    }
    return 0;
}
