// The compile settings of a module are those recorded for its first instrumented source that has
// a record. Kept: a "CompileCmd.txt" left by an earlier run counts, whatever `cp` did.
#include "lltld/module_compile.h"

#include "commonfunc/Caddis_func.h"
#include "commonfunc/file_io.h"
#include "commonfunc/file_ops.h"
#include "commonfunc/file_tree.h"
#include "commonfunc/ini_profile.h"
#include "commonfunc/message.h"
#include "commonfunc/shell.h"
#include "lltld/cov_paths.h"
#include "lltld/inst_file_list.h"

#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

/// Bytes of each path and of the whole copy command that are used.
constexpr std::size_t COPY_PATH_LENGTH = 259;
constexpr std::size_t COPY_COMMAND_LENGTH = 511;

bool is_plain_file(const std::string& path)
{
    struct stat info = {};
    return ::lstat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

/// True when a copy by the process itself, which costs a tenth, can differ from that of `cp` in
/// nothing: neither links are in play, nor a failure that `cp` would report.
bool copies_plainly(const std::string& source, const std::string& copy)
{
    const bool may_write =
        is_plain_file(copy) ? ::access(copy.c_str(), W_OK) == 0 : ::access(copy.c_str(), F_OK) != 0;
    return may_write && is_plain_file(source) && ::access(source.c_str(), R_OK) == 0;
}

/// Tries the symbol's record; true when the work area holds a compile command afterwards.
bool copy_compile_command(const char* symbol, std::string& command)
{
    const std::string source = temp_compile_command_path(symbol);
    const std::string area = g_lxprj->szCovDictPath;
    command = "cp " + shell_word(source) + " " + shell_word(area);
    if (source.size() > COPY_PATH_LENGTH || area.size() > COPY_PATH_LENGTH ||
        command.size() > COPY_COMMAND_LENGTH) {
        warn(
            "'%s' is not copied: its path or that of the work area is too long; use a shorter project path",
            source.c_str());
        return false;
    }
    if (copies_plainly(source, compile_command_path())) {
        flush_output();
        copy_tree(source, area);
    } else if (QMRFileExists(source.c_str()) != 0) { // else it could only fail, for each symbol
        run_helper(command);
    }
    return QMRFileExists(compile_command_path().c_str()) != 0;
}

/// Kept: "donot" here and "do not" where a symbol is not resolved; logs are searched for both.
void report_missing_records()
{
    print_fatal("copy_compile_command_for_lltld failed\n\n");
    print_fatal(
        "Probably, you have deleted all of KESTO LLT informations, but you areusing incremental-compile or incremental-link\n"
        "solutions: \n"
        "firstly, recompile your source code without using lltwrapper;\n"
        "secondly, check your makefiles, probably there is something wrong with the 'MAKE CLEAN' rules;\n"
        "thirdly, if you don't want to solve the problems mentioned above currently, you must donot clean '%s' automatically.\n",
        g_lxprj->szLLTTEMP);
    print_fatal("please clear your environment, and recompile your source code.\n");
}

/// Carries the settings of the first registered symbol with a record into `g_lxprj`.
int load_module_settings()
{
    if (instFileList.pHead == nullptr) {
        print_info("GetInstInfo:: no-coverage-info\n");
        flush_output();
        return 0;
    }
    std::string command;
    bool is_told = false;
    for (const _InstFile* node = instFileList.pHead; node != nullptr; node = node->pNext) {
        const std::string source = temp_compile_command_path(node->szInstFileName.c_str());
        if (!is_told && QMRFileExists(source.c_str()) == 0) {
            warn("'%s' is missing; compile the source of this symbol again", source.c_str());
            is_told = true;
        }
        if (copy_compile_command(node->szInstFileName.c_str(), command)) {
            std::printf("copy_compile_command_for_lltld: %s\n\n", command.c_str());
            SetToolPath();
            SetModTcInc();
            SetModCompileCmd();
            return 1;
        }
    }
    report_missing_records();
    return 0;
}

std::string compile_option(const char* key, std::size_t size)
{
    const std::unique_ptr<char[]> value(new char[size]());
    QMRGetPrivateProfileString("CompileOption", key, value.get(), static_cast<int>(size), nullptr,
                               compile_option_path().c_str());
    return value.get();
}

int report_failure(int result)
{
    if (result < 1) {
        std::puts("errors happened in FindSymbolInObjFile");
    }
    return result;
}

} // namespace

int GetInstInfo(const char* list)
{
    if (list == nullptr) {
        return 0;
    }
    for (const char* path = list; *path != '\0'; path += std::strlen(path) + 1) {
        if (report_failure(FindSymbolInObjFile(path)) < 1) {
            return 0;
        }
    }
    return load_module_settings();
}

int register_scanned_objects(const std::vector<ScannedObject>& objects)
{
    InstNameRecorder names;
    for (const ScannedObject& object : objects) {
        if (report_failure(register_symbols(object, names)) < 1) {
            return 0;
        }
    }
    return load_module_settings();
}

void SetToolPath()
{
    g_lxprj->strToolPath = cut_program_directory(261);
}

void SetModTcInc()
{
    std::string& include = g_lxprj->m_str_include;
    include = " -I " + g_lxprj->strToolPath + "/include " + "-I " + g_lxprj->strToolPath +
              "/include/cunit ";
    if (QMRFileExists(compile_option_path().c_str()) == 0) {
        std::printf("CompileOption.ini(%s) doesn't exist.\n", compile_option_path().c_str());
        return;
    }
    include += compile_option("C_Macro", 2048) + " " + compile_option("Cpp_Macro", 2048) + " " +
               compile_option("IncludePath", 0x20000);
}

int SetModCompileCmd()
{
    std::string text;
    const std::string path = compile_command_path();
    const Reading reading = read_whole_file(path, text);
    g_lxprj->strCompileCmd = text.c_str();
    if (reading == Reading::missing || reading == Reading::not_opened) {
        std::printf("open file [%s] error.\n", path.c_str());
    }
    return reading == Reading::done || reading == Reading::empty ? 1 : 0;
}
