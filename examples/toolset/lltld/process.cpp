#include "examples/toolset/lltld/process.h"

#include "commonfunc/Caddis_func.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <libgen.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

int run(const std::vector<std::string>& words, Output output)
{
    std::vector<char*> argv;
    for (const std::string& word : words) {
        argv.push_back(const_cast<char*>(word.c_str()));
    }
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    if (output == Output::discarded) {
        ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
        ::posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    }
    flush_output();
    pid_t child = 0;
    const int error = ::posix_spawnp(&child, argv[0], &actions, nullptr, argv.data(), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    if (error != 0) {
        say("cannot run '%s': %s", argv[0], std::strerror(error));
        return 127;
    }
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return exit_status_of(status);
}

void say(const char* format, ...)
{
    char text[4096];
    va_list args;
    va_start(args, format);
    format_list(text, sizeof text, format, args);
    va_end(args);
    flush_output();
    std::fprintf(stderr, "lltld: %s\n", text);
}

std::string own_directory()
{
    char path[513] = {};
    GetCurrProcName(path);
    return ::dirname(path);
}
