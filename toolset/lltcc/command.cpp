// Only the few options that decide something are known; the compiler reads the command itself.
#include "toolset/lltcc/command.h"

#include "commonfunc/path_name.h"
#include "commonfunc/response_file.h"
#include "commonfunc/text.h"
#include "toolset/common/source_name.h"

#include <algorithm>
#include <initializer_list>
#include <string_view>

namespace
{

/// Whether the word is one of the list, whose words have a blank on each side.
bool is_in(std::string_view list, const std::string& word)
{
    return !word.empty() && list.find(" " + word + " ") != list.npos;
}

/// Options whose value is the next word.
constexpr std::string_view VALUED =
    " -o -x -D -U -I -L -l -include -imacros -isystem -iquote -idirafter -iprefix -iwithprefix "
    "-iwithprefixbefore -isysroot -MF -MT -MQ -MJ -Xassembler -Xpreprocessor -Xlinker -Xclang "
    "-mllvm -target -T -u -z -A -B -aux-info --param -dumpbase -dumpdir -dumpbase-ext -arch "
    "-specs -wrapper --sysroot -imultilib -include-pch -ivfsoverlay --include ";

/// Of these the ones that matter to a stub.
constexpr std::string_view VALUED_FOR_STUB = " -target -isysroot --sysroot -idirafter -arch -B ";

constexpr std::string_view LANGUAGES = " none c c++ cpp-output c++-cpp-output ";

/// Beginnings of options that count or use counts themselves.
constexpr std::string_view PROFILE_OPTIONS =
    "-fprofile-use -fprofile-generate -fprofile-arcs -ftest-coverage --coverage -coverage "
    "-fauto-profile -fbranch-probabilities -fcs-profile -fprofile-values -fprofile-instr "
    "-fcoverage-mapping -fcoverage-mcdc";

/// Beginnings of options that a stub must be compiled with too: target, code generation, debug
/// information. Warnings, language standard and include paths are the sources' own affair.
constexpr std::string_view FOR_STUB = "-m -f -O -g --target= --sysroot= -B -pthread";

/// Of these the ones that a stub must not have.
constexpr std::string_view NOT_FOR_STUB =
    "-fsanitize -fprofile -ftest-coverage -fcoverage -fdump -fpreprocessed -fdirectives -fmodule "
    "-fplugin -fsyntax -finput -fno-rtti -fvisibility-inlines -fpermissive -fdiagnostics "
    "-fstack-usage -fcallgraph -flto";

/// Whether the word begins with one of the list, whose words have blanks between them.
bool begins_with_one_of(std::string_view list, std::string_view word)
{
    while (!list.empty()) {
        const std::string_view beginning = list.substr(0, list.find(' '));
        if (begins_with(word, beginning)) {
            return true;
        }
        list.remove_prefix(std::min(beginning.size() + 1, list.size()));
    }
    return false;
}

constexpr std::string_view EXCLUDE = "-fprofile-exclude-files=";

class Reader
{
public:
    explicit Reader(CompileCommand& out) : out_(out) {}

    void read(const Words& words)
    {
        for (at_ = 1; at_ < words.size(); ++at_) {
            const bool has_value = is_in(VALUED, words[at_]) && at_ + 1 < words.size();
            read_word(words[at_], has_value ? words[at_ + 1] : "");
            at_ += has_value ? 1 : 0;
        }
        decide();
    }

private:
    void read_word(const std::string& word, const std::string& value)
    {
        if (word == "-" || word.empty() || word[0] != '-') {
            read_input(word);
        } else if (word == "-x") {
            language_ = value;
        } else if (begins_with(word, "-x")) {
            language_ = word.substr(2);
        } else if (word == "-c") {
            compiles_ = true;
        } else if (is_one_of(word, {"-E", "-S", "-M", "-MM", "-fsyntax-only", "-emit-llvm"})) {
            give_up(word + " makes no object");
        } else if (begins_with(word, "-flto")) {
            out_.has_lto = true;
        } else if (word == "-fno-lto") {
            out_.has_lto = false;
        } else if (begins_with(word, "-O")) {
            out_.is_optimised = word != "-O0";
            read_code_option(word, value);
        } else if (begins_with(word, "-o")) {
            out_.output = word == "-o" ? value : word.substr(2);
        } else if (begins_with(word, EXCLUDE)) {
            out_.excluded = word.substr(EXCLUDE.size());
        } else if (begins_with_one_of(PROFILE_OPTIONS, word)) {
            give_up("the command has a " + word + " of its own");
        } else {
            read_code_option(word, value);
        }
    }

    void read_code_option(const std::string& word, const std::string& value)
    {
        for (const char* option : {"-ffile-prefix-map=", "-fdebug-prefix-map="}) {
            const std::size_t equals = word.rfind('=');
            const std::size_t start = std::string(option).size();
            if (begins_with(word, option) && equals >= start) {
                out_.path_maps.emplace_back(word.substr(start, equals - start),
                                            word.substr(equals + 1));
            }
        }
        if (is_in(VALUED_FOR_STUB, word)) {
            out_.kept.push_back(word);
            out_.kept.push_back(value);
        } else if (begins_with_one_of(FOR_STUB, word) && !is_in(VALUED, word) &&
                   !begins_with_one_of(NOT_FOR_STUB, word)) {
            out_.kept.push_back(word);
        }
    }

    void read_input(const std::string& word)
    {
        const std::string suffix = suffix_of(word);
        if (word == "-") {
            give_up("the source comes from standard input");
        } else if (!is_in(LANGUAGES, language_)) {
            give_up("language " + language_);
        } else if (language_ != "none" || names_source(word)) {
            out_.inputs.push_back({word, at_, true});
        } else if (is_one_of(suffix, {"s", "S", "sx"})) {
            out_.inputs.push_back({word, at_, false});
        } else if (suffix.size() > 0 && suffix[0] == 'h') {
            give_up("'" + word + "' becomes a precompiled header");
        }
    }

    void decide()
    {
        const auto is_source = [](const CompileInput& input) { return input.is_source; };
        if (!compiles_) {
            give_up("no -c");
        } else if (out_.inputs.empty()) {
            give_up("no source");
        } else if (std::none_of(out_.inputs.begin(), out_.inputs.end(), is_source)) {
            give_up("'" + out_.inputs[0].path + "' is assembly");
        } else if (out_.inputs.size() > 1 && !out_.output.empty()) {
            give_up("several sources for one object");
        }
    }

    void give_up(const std::string& why)
    {
        if (out_.why_plain.empty()) {
            out_.why_plain = why;
        }
    }

    CompileCommand& out_;
    std::string language_ = "none";
    std::size_t at_ = 0; ///< the word that is read
    bool compiles_ = false;
};

} // namespace

Launchers take_launchers(Words& command)
{
    Launchers launchers;
    while (command.size() > 1) {
        const std::string name = base_name(command[0]);
        if (name == "ccache") {
            launchers.kept = {command[0]};
        } else if (is_one_of(name, {"sccache", "distcc", "icecc"})) {
            launchers.skipped.push_back(name);
        } else {
            break;
        }
        command.erase(command.begin());
    }
    return launchers;
}

CompileCommand read_command(const Words& command)
{
    CompileCommand out;
    out.words = with_response_files(command);
    out.kept.push_back(out.words[0]);
    Reader(out).read(out.words);
    return out;
}

Words words_for_input(const CompileCommand& command, const CompileInput& input)
{
    Words words;
    for (std::size_t i = 0; i < command.words.size(); ++i) {
        const bool is_other = std::any_of(
            command.inputs.begin(), command.inputs.end(), [&](const CompileInput& other) {
                return other.position == i && other.position != input.position;
            });
        if (!is_other && command.words[i] != "-pipe") {
            words.push_back(command.words[i]);
        }
    }
    return words;
}
