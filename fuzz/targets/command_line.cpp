// The rebuilt command and the decision what to do with it. Four lines for "lltwrapper_cfg",
// "LLT_TargetName", "LLT_TargetName_KO" and "LLTLD_AVOID_SAME_NAME", then the words, a line each.
#include "commonfunc/Caddis_func.h"
#include "fuzz/fuzz.h"
#include "fuzz/models.h"
#include "lltld/program_objects.h"
#include "lltwrapper/cmd_parser.h"
#include "lltwrapper/step_plan.h"
#include "lltwrapper/wrapper_state.h"

#include <cctype>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <map>
#include <set>
#include <unistd.h>
#include <utility>

namespace
{

using Words = fuzz::Texts;

/// The mode flags, of which one is set.
constexpr char COMPILE[] = "10000", LINK[] = "01000", ARCHIVE[] = "00100", UNCHANGED[] = "00010",
               SPECIAL[] = "00001";

/// What the options and words of a command make of the process, by the rows of the manual.
struct Model {
    std::string command, link, archive, user, user_module;
    std::map<std::string, std::string> options; ///< values of the wrapper's own
    std::set<std::string> objects = {"?"};
    std::string flag = UNCHANGED;
    int token = 0;
};

std::string name_in(const std::string& path)
{
    return path.substr(path.rfind('/') + 1);
}

std::string escaped(const std::string& text)
{
    std::string out;
    for (const char c : text) {
        out += (std::strchr("\" ()<>", c) != nullptr ? "\\" : "") + std::string(1, c);
    }
    return out;
}

bool is_any(const std::string& word, const char* list)
{
    const Words words = fuzz::pieces_of(list, ' ');
    return std::find(words.begin(), words.end(), word) != words.end();
}

constexpr char SUFFIX_OPTIONS[] = "-objsuffix -binsuffix -artool -arsuffix";

std::string lower(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(), ::tolower);
    return text;
}

void rebuild(Model& model, const Words& words)
{
    const std::size_t end = words.size();
    for (std::size_t i = 0; i < end; ++i) {
        const std::string& word = words[i];
        const bool has_value = i + 1 < end;
        if (word == "-qmr_current_prj_path") {
            i += i + 2 < end && words[i + 2] == "-projectname" ? 3 : 1;
        } else if (is_any(word, "-projectname -qmr_coverage_stub_mold -mshort-load-bytes") ||
                   lower(word) == "-lltwrapper_envfile") {
            ++i;
        } else if (word == "-Wa,-march=armv7-a+sec") {
            model.command += "-Wa,-march=armv7-a ";
        } else if (word.find("-Wl,-rpath,$ORIGIN") != std::string::npos) {
            model.command += word.substr(0, 11) + "\\$" + word.substr(12) + "  ";
        } else if (is_any(word, SUFFIX_OPTIONS)) {
            if (has_value) {
                model.options[word] = word == "-artool" ? name_in(words[i + 1]) : words[i + 1];
                const Words pieces =
                    fuzz::pieces_of(word == "-objsuffix" ? words[i + 1] : "?", '|');
                model.objects.insert(pieces.begin(), pieces.end());
            }
            ++i;
        } else if (word == "-Xlinker") {
            model.command += word + " " + (has_value ? "\"" + words[i + 1] + "\" " : "");
            ++i;
        } else if (is_any(word, "-D -I -o -c -S -E -L -l")) {
            model.command += word + " " + (has_value ? escaped(words[i + 1]) + " " : "");
            ++i;
        } else if (is_any(word.substr(0, 2), "-D -I -L -l") || ::access(word.c_str(), F_OK) == 0) {
            model.command += escaped(word) + " ";
        } else {
            model.command += word + " ";
            model.options["-m"] =
                word == "-m32" || word == "-m64" ? "_m" + word.substr(2) : model.options["-m"];
        }
    }
}

/// The value of the first entry, by keys, whose key occurs in the path.
std::string listed(const std::string& list, const std::string& path)
{
    std::map<std::string, std::string> entries;
    for (const std::string& piece : fuzz::pieces_of(list, ':')) {
        const std::size_t comma = piece.find(',');
        if (comma == std::string::npos) {
            break;
        }
        entries[piece.substr(0, comma)] = piece.substr(comma + 1);
    }
    for (const auto& [key, value] : entries) {
        if (!key.empty() && !value.empty() && path.find(key) != std::string::npos) {
            return value;
        }
    }
    return "";
}

/// The path with all links resolved, or what the system makes of one that does not exist.
std::string real_path(const std::string& path)
{
    char real[PATH_MAX] = {};
    [[maybe_unused]] const char* const whole = ::realpath(path.c_str(), real);
    return real;
}

void decide_link(Model& model, const std::string& output)
{
    const std::string name = name_in(output),
                      lists[] = {std::getenv("LLT_TargetName"), std::getenv("LLT_TargetName_KO")};
    model.flag = LINK;
    if (model.token == 1 && (!lists[0].empty() || !lists[1].empty())) {
        const std::string path = real_path(output).substr(0, 511);
        model.user = listed(lists[0], path);
        model.user_module = listed(lists[1], path);
        model.flag = model.user.empty() && model.user_module.empty() ? UNCHANGED : LINK;
    } else if (model.token == 1) {
        model.flag = name == ".tmp_vmlinux1"                 ? LINK
                     : is_any(name, ".tmp_vmlinux2 vmlinux") ? SPECIAL
                                                             : UNCHANGED;
    }
    if (model.flag == LINK) {
        model.link = name == ".tmp_vmlinux1" ? "tmp_vmlinux1" : name.substr(0, name.find('.'));
        if (name != ".tmp_vmlinux1" && name.find('.') != std::string::npos &&
            std::atoi(std::getenv("LLTLD_AVOID_SAME_NAME")) == 1) {
            model.link = name.substr(0, 255);
            std::replace(model.link.begin(), model.link.end(), '.', '_');
        }
    }
}

/// True when a member with coverage is among the words: by its path, or in the response file.
bool has_member(const Words& words)
{
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (is_any(words[i], SUFFIX_OPTIONS)) {
            ++i;
        } else if (real_path(words[i]) == fuzz::scratch() + "/member.o" ||
                   (words[i][0] == '@' &&
                    real_path(words[i].substr(1)) == fuzz::scratch() + "/words")) {
            return true;
        }
    }
    return false;
}

void decide(Model& model, const Words& words)
{
    const std::string archiver = lower(model.options["-artool"]);
    const std::string archive_suffix = lower(model.options["-arsuffix"]);
    bool compiles = false, has_output = false, archives = false;
    std::string output;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string& word = words[i];
        const std::size_t dot = word.rfind('.');
        if (word == "-c") {
            compiles = true;
        } else if (word == "-o") {
            has_output = has_output || i + 1 < words.size();
            output = i + 1 < words.size() ? words[i + 1] : output;
        } else if (word == "-S" || word == "-E") {
            return;
        } else if (is_any(lower(word), SUFFIX_OPTIONS)) {
            ++i;
        } else if (!archiver.empty() && lower(name_in(word)) == archiver) {
            archives = true;
        } else if (archives && model.archive.empty() && dot != std::string::npos &&
                   lower(word.substr(dot)) == archive_suffix) {
            model.archive = word;
            model.link = name_in(word).substr(0, name_in(word).find('.'));
        }
    }
    model.token = std::atoi(std::getenv("lltwrapper_cfg"));
    const std::size_t information = output.rfind(".mod.o");
    if (compiles) {
        const bool is_skipped =
            output.substr(information == std::string::npos ? 0 : information + 1) == "mod.o";
        model.flag = model.token == 2 && is_skipped ? UNCHANGED : COMPILE;
    } else if (has_output) {
        decide_link(model, output);
    } else if (archives) {
        model.flag = model.link.empty() || has_member(words) ? ARCHIVE : UNCHANGED;
        model.link = model.link.substr(0, 255);
        std::replace(model.link.begin(), model.link.end(), '-', '_');
    }
}

bool make_files()
{
    fuzz::scratch();
    for (const char* name : {"a (b).c", "x<y>", "q\"r.o", "plain.o"}) {
        fuzz::write_file(name, "");
    }
    fuzz::write_file("member.o", "g_QMRCovData_s");
    fuzz::write_file("words", "member.o");
    fuzz::set_environment("qmr_current_prj_path", "/none");
    return true;
}

void reset()
{
    for (std::string* text :
         {&pOriginalCmd, &strLinkName, &strLinkNameUser, &strLinkNameUserKo, &strObjSuffix,
          &strBinSuffix, &strArTools, &strArSuffix, &arname, &g_str_m32m64}) {
        text->clear();
    }
    vtor_objtypes.clear();
    lltcc_flag = lltld_flag = ar_flag = ori_flag = special_flag = iToken_wrapper = 0;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const bool once = make_files();
    fuzz::holds("the files are there", once);
    const HeldMessages quiet;
    fuzz::Input input(data, size);
    for (const char* name :
         {"lltwrapper_cfg", "LLT_TargetName", "LLT_TargetName_KO", "LLTLD_AVOID_SAME_NAME"}) {
        fuzz::set_environment(name, input.line().substr(0, 200));
    }
    Words words;
    while (!input.empty()) {
        words.push_back(input.line());
    }
    reset();
    rebuild_command(words);
    plan_step(words, [](const std::string&, const std::string&) { return true; });

    const std::string flags = std::to_string(lltcc_flag) + std::to_string(lltld_flag) +
                              std::to_string(ar_flag) + std::to_string(ori_flag) +
                              std::to_string(special_flag);

    Model model;
    rebuild(model, words);
    decide(model, words);
    fuzz::same("command, options, names",
               {model.command, model.options["-objsuffix"], model.options["-binsuffix"],
                model.options["-artool"], model.options["-arsuffix"], model.archive, model.user,
                model.user_module, model.link, model.flag, model.options["-m"]},
               {pOriginalCmd, strObjSuffix, strBinSuffix, strArTools, strArSuffix, arname,
                strLinkNameUser, strLinkNameUserKo, strLinkName, flags, g_str_m32m64});
    vtor_objtypes.insert("?");
    fuzz::same("suffixes of objects", Words(model.objects.begin(), model.objects.end()),
               Words(vtor_objtypes.begin(), vtor_objtypes.end()));
    fuzz::same("token", model.token, iToken_wrapper);
    return 0;
}
