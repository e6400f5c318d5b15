// The compiler tells by its own "-v" who it is and where its headers are. The answer is a file per
// compiler and target, since every compile of a build asks.
#include "toolset/lltcc/compiler.h"

#include "commonfunc/file_io.h"
#include "commonfunc/path_name.h"
#include "commonfunc/path_search.h"
#include "commonfunc/text.h"
#include "toolset/common/driver_call.h"
#include "toolset/common/process.h"

#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace
{

/// Part of every answer's name: another one asks all compilers again.
constexpr const char* FORMAT_VERSION = "compiler 4";

/// A program beside the compiler, under its name with the last "gcc", "g++", ... replaced.
std::string beside(const std::string& compiler, const std::string& tool)
{
    const std::size_t start = compiler.rfind('/') + 1;
    for (const std::string own : {"gcc", "g++", "cc", "c++"}) {
        const std::size_t at = compiler.rfind(own);
        if (at != compiler.npos && at >= start) {
            std::string path = compiler;
            path.replace(at, own.size(), tool);
            return ::access(path.c_str(), X_OK) == 0 ? path : "";
        }
    }
    return "";
}

/// The directory as the beginning of a path, in the compiler's regular expressions.
std::string as_expression(const std::string& directory)
{
    std::string out = "^";
    for (const char c : directory) {
        out.append(std::string_view("\\^$.|?*+()[]{}").find(c) != std::string_view::npos, '\\');
        out += c;
    }
    return out + "/";
}

/// Reads what "-v" has printed.
Compiler read_answer(const std::string& answer)
{
    Compiler compiler;
    bool in_list = false;
    std::istringstream lines(answer);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t version = line.find(" version ");
        if (begins_with(line, "gcc version ")) {
            compiler.kind = Compiler::Kind::gcc;
            compiler.major = std::atoi(line.c_str() + 12);
        } else if (line.find("clang version ") != line.npos) {
            compiler.kind = Compiler::Kind::clang;
            compiler.major = std::atoi(line.c_str() + version + 9);
        } else if (begins_with(line, "#include ")) {
            in_list = true;
        } else if (begins_with(line, "End of search list")) {
            in_list = false;
        } else if (in_list && line[0] == ' ') {
            compiler.headers +=
                (compiler.headers.empty() ? "" : ";") + as_expression(line.substr(1));
        }
    }
    return compiler;
}

/// The words that choose the compiler's target and headers, the compiler first.
Words query_of(const CompileCommand& command)
{
    Words words = {command.kept[0]};
    for (std::size_t i = 1; i < command.kept.size(); ++i) {
        const std::string& word = command.kept[i];
        const bool is_option = !word.empty() && word[0] == '-';
        if (!is_option || begins_with(word, "-m") || begins_with(word, "--") ||
            is_one_of(word, {"-target", "-isysroot", "-idirafter", "-arch"}) ||
            begins_with(word, "-B")) {
            words.push_back(word); // one that is no option is the value of the option before
        }
    }
    return words;
}

struct Answer {
    int status;
    std::string output;
    std::string errors;
};

/// What the compiler says when it is called with the options: in English, and without directories
/// of the user's.
Answer answer_to(Words query, const Words& options)
{
    const Words environment = {"LC_ALL=C",
                               "CPATH",
                               "C_INCLUDE_PATH",
                               "CPLUS_INCLUDE_PATH",
                               "DEPENDENCIES_OUTPUT",
                               "SUNPRO_DEPENDENCIES"};
    query.insert(query.end(), options.begin(), options.end());
    Answer answer;
    answer.status = run_program(query, {nullptr, &answer.output, &answer.errors, environment});
    return answer;
}

Compiler ask(const Words& query, const std::string& program)
{
    Answer answer = answer_to(query, {"-E", "-v", "-x", "c++", "/dev/null"});
    if (answer.status != 0) { // it may compile C alone
        answer = answer_to(query, {"-E", "-v", "-x", "c", "/dev/null"});
    }
    Compiler compiler = read_answer(answer.errors);
    const std::string real = absolute_path(program);
    if (compiler.kind == Compiler::Kind::gcc) {
        const std::string reader = beside(program, "gcov");
        compiler.reader = reader.empty() ? beside(real, "gcov") : reader;
    } else if (compiler.kind == Compiler::Kind::clang) {
        compiler.reader = real.substr(0, real.rfind('/'));
    }
    // A path, or a name to be found through PATH.
    const std::string assembler = answer_to(query, {"-print-prog-name=as"}).output;
    compiler.assembler = assembler.empty() ? "as" : assembler.substr(0, assembler.find('\n'));
    return compiler;
}

/// The answer as lines, and back; false when the text is not whole.
std::string to_text(const Compiler& compiler)
{
    return std::to_string(static_cast<int>(compiler.kind)) + "\n" + std::to_string(compiler.major) +
           "\n" + compiler.headers + "\n" + compiler.reader + "\n" + compiler.assembler + "\nend\n";
}

bool from_text(const std::string& text, Compiler& compiler)
{
    std::istringstream in(text);
    int kind = 0;
    std::string end;
    in >> kind >> compiler.major;
    in.ignore();
    std::getline(in, compiler.headers);
    std::getline(in, compiler.reader);
    std::getline(in, compiler.assembler);
    std::getline(in, end);
    compiler.kind = static_cast<Compiler::Kind>(kind);
    return end == "end";
}

} // namespace

Compiler know_compiler(const std::string& area, const CompileCommand& command)
{
    const Words query = query_of(command);
    const std::string program = program_on_path(query[0]);
    Words key = query;
    struct stat info = {};
    ::stat(program.c_str(), &info);
    key.insert(key.end(), {FORMAT_VERSION, program, std::to_string(info.st_size),
                           std::to_string(info.st_mtim.tv_sec), std::to_string(info.st_ino)});
    const std::string directory = area + "/compilers";
    const std::string path = directory + "/" + hash_name(key);
    Compiler compiler;
    std::string text;
    if (read_whole_file(path, text) == Reading::done && from_text(text, compiler)) {
        return compiler;
    }
    compiler = ask(query, program);
    std::error_code unused;
    std::filesystem::create_directories(directory, unused);
    replace_file(path, to_text(compiler));
    return compiler;
}
