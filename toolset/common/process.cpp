// What a program reads and writes goes through files without names: unlike pipes they need no
// second process or thread, and nothing is left when a build is stopped.
#include "toolset/common/process.h"

#include "commonfunc/env.h"
#include "commonfunc/message.h"
#include "commonfunc/shell.h"
#include "commonfunc/text.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

std::vector<char*> pointers(const Words& words)
{
    std::vector<char*> out;
    for (const std::string& word : words) {
        out.push_back(const_cast<char*>(word.c_str()));
    }
    out.push_back(nullptr);
    return out;
}

/// A standard stream of a child that is an anonymous file.
struct Redirection {
    int target;
    int file;
    std::string* result;
};

std::string cannot_run(const std::string& program, int error)
{
    return "cannot run '" + program + "': " + std::strerror(error);
}

} // namespace

int anonymous_file(const std::string& text)
{
    const int file = ::memfd_create(program_name, MFD_CLOEXEC);
    for (std::size_t done = 0; file >= 0 && done < text.size();) {
        const ssize_t n = ::write(file, text.data() + done, text.size() - done);
        if (n < 0 && errno != EINTR) {
            ::close(file);
            return -1;
        }
        done += n > 0 ? static_cast<std::size_t>(n) : 0;
    }
    if (file >= 0) {
        ::lseek(file, 0, SEEK_SET);
    }
    return file;
}

std::string content_of(int descriptor)
{
    constexpr std::size_t PIECE = 65536; // too large for a small stack
    std::string text;
    std::size_t size = 0;
    ::lseek(descriptor, 0, SEEK_SET);
    for (ssize_t n = 1; n > 0 || (n < 0 && errno == EINTR);) {
        text.resize(size + PIECE);
        n = ::read(descriptor, &text[size], PIECE);
        size += n > 0 ? static_cast<std::size_t>(n) : 0;
    }
    text.resize(size);
    return text;
}

int run_program(const Words& words, const Streams& streams)
{
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    std::vector<Redirection> redirections;
    int error = 0;
    const auto redirect = [&](int target, const std::string& text, std::string* result) {
        redirections.push_back({target, anonymous_file(text), result});
        error = redirections.back().file < 0 ? errno : error;
        ::posix_spawn_file_actions_adddup2(&actions, redirections.back().file, target);
    };
    if (streams.input != nullptr) {
        redirect(STDIN_FILENO, *streams.input, nullptr);
    }
    if (streams.output != nullptr) {
        redirect(STDOUT_FILENO, "", streams.output);
    } else if (tool_output() != STDOUT_FILENO) {
        ::posix_spawn_file_actions_adddup2(&actions, tool_output(), STDOUT_FILENO);
    }
    if (streams.errors != nullptr) {
        redirect(STDERR_FILENO, "", streams.errors);
    }
    flush_output();
    const ChangedEnvironment environment(streams.environment);
    pid_t child = 0;
    int status = -1;
    if (error == 0) { // else it would read and write what this program does
        error = ::posix_spawnp(&child, words[0].c_str(), &actions, nullptr, pointers(words).data(),
                               environment.variables());
    }
    while (error == 0 && ::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    for (const Redirection& one : redirections) {
        if (one.result != nullptr) {
            *one.result = content_of(one.file);
        }
        ::close(one.file);
    }
    ::posix_spawn_file_actions_destroy(&actions);
    if (error != 0 && streams.errors != nullptr) {
        *streams.errors = std::string(program_name) + ": " + cannot_run(words[0], error) + "\n";
    } else if (error != 0) {
        notice("%s", cannot_run(words[0], error).c_str());
    }
    return exit_status_of(error == 0 ? status : -1);
}

int become_program(const Words& words)
{
    restore_output();
    flush_output();
    ::execvp(words[0].c_str(), pointers(words).data());
    notice("%s", cannot_run(words[0], errno).c_str());
    return 127;
}

void notice(const char* format, ...)
{
    char text[4096];
    va_list args;
    va_start(args, format);
    format_list(text, sizeof text, format, args);
    va_end(args);
    flush_output();
    std::fprintf(stderr, "%s: %s\n", program_name, text);
}
