// Only the few options that decide something are known; the compiler reads the command itself.
#include "command.h"

#include "commonfunc/Caddis_func.h"
#include "commonfunc/response_file.h"

#include <algorithm>
#include <initializer_list>
#include <string_view>

namespace
{

bool is_one_of(std::string_view word, std::initializer_list<std::string_view> list)
{
    return std::find(list.begin(), list.end(), word) != list.end();
}

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

std::string suffix_of(const std::string& name)
{
    const std::string base = base_name(name);
    const std::size_t dot = base.rfind('.');
    return dot == base.npos ? "" : base.substr(dot + 1);
}

bool is_source(const std::string& suffix)
{
    return is_one_of(suffix, {"c", "i", "ii", "cc", "cp", "cxx", "cpp", "CPP", "c++", "C", "tcc"});
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
    explicit Reader(CompileCommand& out) : m_out(out) {}

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
            m_language = value;
        } else if (begins_with(word, "-x")) {
            m_language = word.substr(2);
        } else if (word == "-c") {
            m_compiles = true;
        } else if (is_one_of(word, {"-E", "-S", "-M", "-MM", "-fsyntax-only", "-emit-llvm"})) {
            give_up(word + " makes no object");
        } else if (begins_with(word, "-flto")) {
            m_out.has_lto = true;
        } else if (word == "-fno-lto") {
            m_out.has_lto = false;
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
                m_out.path_maps.emplace_back(word.substr(start, equals - start),
                                             word.substr(equals + 1));
            }
        }
        if (begins_with(word, "-g") && !begins_with(word, "-gno-") && !begins_with(word, "-gz") &&
            !begins_with(word, "-grecord")) {
            m_out.has_debug_info = word.back() != '0';
        }
        if (begins_with(word, "-O")) {
            m_out.optimizes = word != "-O0";
        }
        if (is_one_of(word, {"-target", "-isysroot", "--sysroot", "-arch", "-B"})) {
            m_out.kept.push_back(word);
            m_out.kept.push_back(value);
        } else if (matters_to_stub(word) && !takes_value(word)) {
            m_out.kept.push_back(word);
        }
    }

    void read_input(const std::string& word)
    {
        const std::string suffix = suffix_of(word);
        if (word == "-") {
            give_up("the source comes from standard input");
        } else if (!is_compilable_language(m_language)) {
            give_up("language " + m_language);
        } else if (m_language != "none" || is_source(suffix)) {
            m_out.sources.push_back(word);
        } else if (is_one_of(suffix, {"s", "S", "sx"})) {
            m_assembly = word;
        } else if (suffix.size() > 0 && suffix[0] == 'h') {
            give_up("'" + word + "' becomes a precompiled header");
        }
    }

    void decide()
    {
        const std::string kind = kind_of(m_out.kept[0]);
        m_out.is_clang = kind == "clang" || kind == "clang++";
        if (!m_out.is_clang && !is_one_of(kind, {"gcc", "g++", "cc", "c++", "c89", "c99"})) {
            give_up("'" + m_out.kept[0] + "' is no compiler that it knows");
        } else if (!m_compiles) {
            give_up("no -c");
        } else if (m_out.sources.empty()) {
            give_up(m_assembly.empty() ? "no source" : "'" + m_assembly + "' is assembly");
        }
    }

    void give_up(const std::string& why)
    {
        if (m_out.why_plain.empty()) {
            m_out.why_plain = why;
        }
    }

    CompileCommand& m_out;
    std::string m_language = "none";
    std::string m_assembly;
    bool m_compiles = false;
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
