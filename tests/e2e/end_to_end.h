// The built program in front of recorder tools. Project root /p and stub mode 2 unless a test says
// otherwise.
#pragma once

#include "tests/fixture.h"

#include <cstdlib>
#include <regex>
#include <string>
#include <sys/wait.h>

class EndToEnd : public TestDir
{
protected:
    std::string out, err, calls;

    void SetUp() override
    {
        TestDir::SetUp();
        const char* const link =
            "mkdir bin; for tool in gcc ar lltcc lltld lltld_kernel lltld_omu lltld_noos hotpatch "
            "link_fixaddr_hotpatch; do ln -s '" RECORDER "' bin/$tool; done";
        ASSERT_EQ(std::system(link), 0);
        ::setenv("PATH", (dir + "/bin:/usr/bin:/bin").c_str(), 1);
        ::setenv("RECORDER_LOG", (dir + "/log").c_str(), 1);
        ::setenv("qmr_current_prj_path", "/p", 1);
        ::setenv("qmr_coverage_stub_mold", "2", 1);
    }

    int run(const std::string& env, const std::string& args)
    {
        write_file("run",
                   "rm -f log; exec env " + env + " '" LLTWRAPPER "' " + args + " >out 2>err");
        const int status = std::system("sh ./run");
        out = read_file("out"), err = read_file("err"), calls = read_file("log");
        return WEXITSTATUS(status);
    }

    /// True when standard error has one line of the program's own, with this text in it; for an
    /// empty text, when it has none.
    bool warns(const std::string& text) const
    {
        const std::string line = "lltwrapper: [^\n]*" + text + "[^\n]*\n";
        return std::regex_match(err, std::regex("(Killed\n)?" + (text.empty() ? text : line)));
    }
};
