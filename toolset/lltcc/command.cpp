// Only the few options that decide something are known; the compiler reads the command itself.
#include "toolset/lltcc/command.h"

#include "commonfunc/path_name.h"
#include "commonfunc/response_file.h"
#include "commonfunc/text.h"
#include "toolset/common/compiler_options.h"
#include "toolset/common/source_name.h"

#include <algorithm>
#include <initializer_list>
#include <string_view>

namespace
{

constexpr std::string_view EXCLUDE = "-fprofile-exclude-files=";

class Reader
{
public:
    explicit Reader(CompileCommand& out) : out_(out) {}

    void read(const Words& words)
    {
        for (at_ = 1; at_ < words.size(); ++at_) {
            const bool has_value = takes_value(words[at_]) && at_ + 1 < words.size();
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
        } else if (counts_itself(word)) {
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
        if (matters_to_stub(word)) {
            out_.kept.push_back(word);
            if (takes_value(word)) {
                out_.kept.push_back(value);
            }
        }
    }

    void read_input(const std::string& word)
    {
        const std::string suffix = suffix_of(word);
        if (word == "-") {
            give_up("the source comes from standard input");
        } else if (!is_one_of(language_, {"none", "c", "c++", "cpp-output", "c++-cpp-output"})) {
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
