// Messages. Standard output is compared by users and tools, so nothing goes there but the texts
// that the calling operation promises; everything else is a warning on standard error.
#include "commonfunc/message.h"

#include "commonfunc/descriptor.h"
#include "commonfunc/env.h"
#include "commonfunc/text.h"

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <unistd.h>

namespace
{

HeldMessages* held = nullptr;
const char* warning_name = "lltwrapper";
std::size_t warnings = 0;
int saved_output = -1; ///< while the log takes its place

__attribute__((format(printf, 1, 0))) std::string formatted(const char* format, va_list args)
{
    va_list again;
    va_copy(again, args);
    const int length = std::vsnprintf(nullptr, 0, format, again);
    va_end(again);
    std::string text(static_cast<std::size_t>(std::max(length, 0)), '\0');
    std::vsnprintf(&text[0], text.size() + 1, format, args);
    return text;
}

void put(const std::string& text)
{
    if (held != nullptr) {
        held->output += text;
    } else {
        std::fwrite(text.data(), 1, text.size(), stdout);
    }
}

} // namespace

void say(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    put(formatted(format, args));
    va_end(args);
}

void TUSKLog(unsigned char component, unsigned char module, unsigned char level, unsigned int code,
             const char* format, ...)
{
    say("[TUSK-0x%02X%02X%X%03X]: ", component, module, level & 0xFU, code & 0xFFFU);
    va_list args;
    va_start(args, format);
    put(formatted(format, args));
    va_end(args);
    flush_output();
}

void print_info(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    put("\033[0;32;34mTUSK_INFO:" + formatted(format, args) + "\033[m");
    va_end(args);
}

void print_fatal(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    put("\033[0;32;31mTUSK_FATAL:" + formatted(format, args) + "\033[m");
    va_end(args);
    flush_output();
}

void set_warning_name(const char* program)
{
    warning_name = program;
}

void warn(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    std::string text = formatted(format, args);
    va_end(args);
    std::replace_if(text.begin(), text.end(), is_control, ' '); // stays one line
    if (held != nullptr) {
        held->warnings.push_back(text);
        return;
    }
    ++warnings;
    text = std::string(warning_name) + ": " + text + "\n";
    std::fflush(stderr);
    write_all(STDERR_FILENO, text.data(), text.size());
}

std::size_t warnings_printed()
{
    return warnings;
}

HeldMessages::HeldMessages()
{
    held = this;
}

HeldMessages::~HeldMessages()
{
    held = nullptr;
}

void log_output()
{
    const std::string path = env_text("LLTWRAPPER_LOG");
    if (path.empty()) {
        return;
    }
    const int saved = ::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    if (saved < 0) {
        return; // it is closed: nobody reads it
    }
    const int log = ::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
    if (log < 0) {
        ::close(saved);
        warn("cannot open the log '%s': %s; set LLTWRAPPER_LOG to a file that can be written",
             path.c_str(), std::strerror(errno));
        return;
    }
    std::fflush(stdout);
    saved_output = saved;
    ::dup2(log, STDOUT_FILENO);
    ::close(log);
}

int tool_output()
{
    return saved_output >= 0 ? saved_output : STDOUT_FILENO;
}

void restore_output()
{
    if (saved_output >= 0) {
        std::fflush(stdout);
        ::dup2(saved_output, STDOUT_FILENO);
        ::close(saved_output);
        saved_output = -1;
    }
}

void flush_output()
{
    std::fflush(stdout);
    std::fflush(stderr);
}

void stop_without_memory()
{
    constexpr char TEXT[] = ": stopped: out of memory; raise the memory limit and try again\n";
    write_all(STDERR_FILENO, program_invocation_short_name,
              std::strlen(program_invocation_short_name));
    write_all(STDERR_FILENO, TEXT, sizeof TEXT - 1);
    ::_exit(1);
}
