// How subcommands are asked for help, and how they answer a wrong call.
#include "tests/fixture.h"

#include <sys/wait.h>

namespace
{

struct Call {
    const char* arguments;
    int status;
    const char* out;   ///< the beginning of what is on standard output
    const char* error; ///< the beginning of what is on standard error
};

class CommandLineOfLltcov : public TestDir
{
};

TEST_F(CommandLineOfLltcov, HelpExitsWith0AndAWrongCallWith2)
{
    const Call calls[] = {
        {"--help", 0, "usage: lltcov COMMAND [", ""},
        {"help", 0, "usage: lltcov COMMAND [", ""},
        {"--version", 0, "lltcov ", ""},
        {"explain --help", 0, "usage: lltcov explain [--project DIR] -- COMMAND...\n", ""},
        {"explain -- gcc --help", 0, "mode       unchanged", ""},
        {"status --help", 0, "usage: lltcov status [", ""},
        {"", 2, "", "usage: lltcov COMMAND ["},
        {"-h", 0, "usage: lltcov COMMAND [", ""},
        {"help status", 0, "usage: lltcov status [", ""},
        {"help summary", 2, "",
         "lltcov: there is no command 'summary'; 'lltcov help' lists them\n"},
        {"summary", 2, "", "lltcov: there is no command 'summary'; 'lltcov help' lists them\n"},
        {"run", 2, "", "lltcov: run needs a command after --\n"},
        {"diff", 2, "", "lltcov: diff needs a revision or a file with a diff\n"},
        {"status --fail-under-line=x", 2, "", "lltcov: --fail-under-line needs a number"},
        {"status --lcov", 2, "", "lltcov: there is no option '--lcov'\nusage: lltcov status ["},
        {"doctor here", 2, "", "lltcov: what is 'here'?\nusage: lltcov doctor ["},
        {"export --lcov r.info", 2, "", "lltcov: what is 'r.info'? The report's file follows -o"},
        {"export --lcov -o", 2, "", "lltcov: option '-o' needs a value\n"},
        {"export", 2, "", "lltcov: choose a format\n"},
        {"tests a.c", 2, "", "lltcov: 'a.c' is no FILE:LINE\n"},
        {"tests --unique a.c:1", 2, "", "lltcov: choose one line, or --unique\n"},
        {"export --lcov --json", 2, "", "lltcov: choose one format\n"},
        {"clean --gone --all", 2, "", "lltcov: choose one of --old, --gone and --all\n"},
        {"status --project=nowhere", 2, "",
         "lltcov: the project's directory 'nowhere' does not exist"},
        {"status --project=.", 1, "MODULE", ""},
    };
    for (const Call& call : calls) {
        SCOPED_TRACE(call.arguments);
        const int status =
            std::system(("'" LLTCOV "' " + std::string(call.arguments) + " >out 2>error").c_str());
        EXPECT_EQ(WEXITSTATUS(status), call.status);
        EXPECT_EQ(read_file("out").compare(0, std::string(call.out).size(), call.out), 0)
            << read_file("out");
        EXPECT_EQ(read_file("error").compare(0, std::string(call.error).size(), call.error), 0)
            << read_file("error");
        EXPECT_TRUE(call.status != 0 || read_file("error").empty());
        EXPECT_TRUE(call.status != 2 || read_file("out").empty());
    }
}

} // namespace
