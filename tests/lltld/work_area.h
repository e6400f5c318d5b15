// What the instrumenting compiler driver leaves in the temporary area, and a module that uses it.
#pragma once

#include "commonfunc/Caddis_func.h"
#include "lltld/covlinktool.h"
#include "lltld/linuxfunc.h"
#include "tests/fixture.h"

#include <filesystem>
#include <regex>

/// An object's bytes: "|" in the text stands for a NUL, "#" for "g_QMRCovData_".
inline std::string object_bytes(const std::string& text)
{
    std::string bytes = std::regex_replace(text, std::regex("#"), "g_QMRCovData_");
    std::replace(bytes.begin(), bytes.end(), '|', '\0');
    return bytes;
}

/// The 280 bytes of a source-file table's record; `stamp` in both fields that are not ours.
inline std::string tab_record(int id, std::string name, int start = 0, int n = 0, int stamp = 0)
{
    std::string record;
    for (const int number : {id, stamp, stamp, start, n, 0}) {
        for (int shift = 0; shift < 32; shift += 8) {
            record += static_cast<char>(number >> shift);
        }
    }
    name.resize(256);
    return record.insert(4, name);
}

/// Standard output of the operation, whose result must be the expected one.
template <class Operation> std::string printed(int expected, Operation operation)
{
    testing::internal::CaptureStdout();
    EXPECT_EQ(operation(), expected);
    return testing::internal::GetCapturedStdout();
}

/// Standard output of a shell command that succeeds.
inline std::string answer(const std::string& command)
{
    return printed(0, [&] { return std::system(command.c_str()); });
}

/// What is printed when the records in "T" are gone; `must_not` is spelled in two ways.
inline std::string records_are_gone(const std::string& must_not)
{
    return "\033[0;32;31mTUSK_FATAL:Probably, you have deleted all of KESTO LLT informations, but you "
           "areusing incremental-compile or incremental-link\nsolutions: \nfirstly, recompile your "
           "source code without using lltwrapper;\nsecondly, check your makefiles, probably there is "
           "something wrong with the 'MAKE CLEAN' rules;\nthirdly, if you don't want to solve the "
           "problems mentioned above currently, you " +
           must_not +
           " clean 'T' automatically.\n\033[m\033[0;32;31mTUSK_FATAL:please clear your environment, and "
           "recompile your source code.\n\033[m";
}

/// All that the driver leaves in "T" under a symbol a_1 of the source a.c and the object a.o.
inline void leave_record(const std::string& symbol, int points = 1,
                         const std::string& compile_command = "gcc")
{
    const std::string root = "T/codemeasure/", db = root + "db/db" + symbol, a(1, symbol[0]);
    for (const std::string& path : {db, root + "ini", root + "obj/before", root + "obj/after"}) {
        std::filesystem::create_directories(path);
    }
    write_file(db + "/.tab", tab_record(5, symbol + ".c", 6, points, 7));
    write_file(db + "/CompileCmd.txt", compile_command);
    write_file(root + "ini/" + symbol + ".ini",
               "[StubFiles]\nStubFilePath1=" + a + ".c\nObjFilePath=" + a + ".o\n");
    write_file(root + "obj/before/" + symbol, "saved " + symbol);
}

/// A module "m" with work area "w" and temporary area "T".
class WorkArea : public TestDir
{
protected:
    void SetUp() override
    {
        TestDir::SetUp();
        answer("mkdir -p w/db w/ini w/obj/before T/codemeasure/ini");
        copy_bounded(g_lxprj->szCovDictPath, "w");
        copy_bounded(g_lxprj->szLLTTEMP, "T");
        copy_bounded(g_lxprj->modName, "m");
    }
};
