// Only the few options that decide something are known; the compiler reads the command itself.
#include "command.h"

#include "commonfunc/Caddis_func.h"
#include "commonfunc/response_file.h"
#include "examples/toolset/common/source_name.h"

#include <algorithm>
#include <initializer_list>
#include <string_view>

namespace
{

/// Options whose value is the next word.
bool takes_value(std::string_view word)
{
    return is_one_of(word, {"-o",
                            "-x",
                            "-D",
                            "-U",
                            "-I",
                            "-L",
                            "-l",
                            "-include",
                            "-imacros",
                            "-isystem",
                            "-iquote",
                            "-idirafter",
                            "-iprefix",
                            "-iwithprefix",
                            "-iwithprefixbefore",
                            "-isysroot",
                            "-MF",
                            "-MT",
                            "-MQ",
                            "-MJ",
                            "-Xassembler",
                            "-Xpreprocessor",
                            "-Xlinker",
                            "-Xclang",
                            "-mllvm",
                            "-target",
                            "-T",
                            "-u",
                            "-z",
                            "-A",
                            "-B",
                            "-aux-info",
                            "--param",
                            "-dumpbase",
                            "-dumpdir",
                            "-dumpbase-ext",
                            "-arch",
                            "-specs",
                            "-wrapper",
                            "--sysroot",
                            "-imultilib",
                            "-include-pch",
                            "-ivfsoverlay",
                            "--include"});
}

bool is_compilable_language(std::string_view language)
{
    return is_one_of(language, {"none", "c", "c++", "cpp-output", "c++-cpp-output"});
}

/// The compiler's name without a target before it and a version behind it.
std::string kind_of(const std::string& compiler)
{
    std::string name = base_name(compiler);
    name.erase(name.find_last_not_of("0123456789.-") + 1);
    const std::size_t dash = name.rfind('-');
    return dash == name.npos ? name : name.substr(dash + 1);
}

/// Options that the stub of the module must be compiled with too: target, code generation, debug
/// information. Warnings, language standard and include paths are the sources' own affair.
bool matters_to_stub(std::string_view word)
{
    for (const std::string_view not_for_stub :
         {"-fsanitize", "-fprofile", "-ftest-coverage", "-fcoverage", "-fdump", "-fpreprocessed",
          "-fdirectives", "-fmodule", "-fplugin", "-fsyntax", "-finput", "-fno-rtti",
          "-fvisibility-inlines", "-fpermissive", "-fdiagnostics", "-fstack-usage", "-fcallgraph",
          "-flto"}) {
        if (begins_with(word, not_for_stub)) {
            return false;
        }
    }
    return begins_with(word, "-m") || begins_with(word, "-f") || begins_with(word, "-O") ||
           begins_with(word, "-g") || begins_with(word, "--target=") ||
           begins_with(word, "--sysroot=") || begins_with(word, "-B") || word == "-pthread";
}

class Reader
{
public:
    explicit Reader(CompileCommand& out) : out_(out) {}

    void read(const Words& words)
    {
        for (std::size_t i = 1; i < words.size(); ++i) {
            const bool has_value = takes_value(words[i]) && i + 1 < words.size();
            read_word(words[i], has_value ? words[i + 1] : "");
            i += has_value ? 1 : 0;
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
        } else if (begins_with(word, "-fsanitize-coverage")) {
            give_up("the command has a " + word + " of its own");
        } else if (is_one_of(word, {"-m32", "-mx32", "-m16"})) {
            give_up(word + " is not supported");
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
        if (begins_with(word, "-g") && !begins_with(word, "-gno-") && !begins_with(word, "-gz") &&
            !begins_with(word, "-grecord")) {
            out_.has_debug_info = word.back() != '0';
        }
        if (begins_with(word, "-O")) {
            out_.optimizes = word != "-O0";
        }
        if (is_one_of(word, {"-target", "-isysroot", "--sysroot", "-arch", "-B"})) {
            out_.kept.push_back(word);
            out_.kept.push_back(value);
        } else if (matters_to_stub(word) && !takes_value(word)) {
            out_.kept.push_back(word);
        }
    }

    void read_input(const std::string& word)
    {
        const std::string suffix = suffix_of(word);
        if (word == "-") {
            give_up("the source comes from standard input");
        } else if (!is_compilable_language(language_)) {
            give_up("language " + language_);
        } else if (language_ != "none" || names_source(word)) {
            out_.sources.push_back(word);
        } else if (is_one_of(suffix, {"s", "S", "sx"})) {
            assembly_ = word;
        } else if (suffix.size() > 0 && suffix[0] == 'h') {
            give_up("'" + word + "' becomes a precompiled header");
        }
    }

    void decide()
    {
        const std::string kind = kind_of(out_.kept[0]);
        out_.is_clang = kind == "clang" || kind == "clang++";
        if (!out_.is_clang && !is_one_of(kind, {"gcc", "g++", "cc", "c++", "c89", "c99"})) {
            give_up("'" + out_.kept[0] + "' is no compiler that it knows");
        } else if (!compiles_) {
            give_up("no -c");
        } else if (out_.sources.empty()) {
            give_up(assembly_.empty() ? "no source" : "'" + assembly_ + "' is assembly");
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
    std::string assembly_;
    bool compiles_ = false;
};

} // namespace

Words without_launcher(const Words& command)
{
    auto compiler = command.begin();
    while (command.end() - compiler > 1 &&
           is_one_of(base_name(*compiler), {"ccache", "sccache", "distcc", "icecc"})) {
        ++compiler;
    }
    return {compiler, command.end()};
}

CompileCommand read_command(const Words& command)
{
    const Words words = with_response_files(command);
    CompileCommand out;
    out.kept.push_back(words[0]);
    Reader(out).read(words);
    return out;
}
